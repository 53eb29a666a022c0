#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "host/dialogs/dialogs.h"
#include "host/settings/choices.h"
#include "host/settings/prefs.h"
#include "host/status.h"
#include "support/host_files.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <functional>
#include <map>

namespace {

constexpr int OK = 1, BASIC = 1002, EXPANSION = 1003, RAM = 1004, CHARACTERS = 1005,
              STANDARD = 1006, CUSTOM = 1007, MODEL = 1008, BASIC_BROWSE = 1014,
              EXPANSION_BROWSE = 1015, CHARACTERS_BROWSE = 1016, BASIC_PATH = 1017,
              EXPANSION_PATH = 1018, CHARACTERS_PATH = 1019, CLOCK = 1020, PALETTE = 1030,
              PATTERN = 40124, CYCLE_BASED = 40125;

using Form = HeadlessForm;

class MachineConfigDialogTest : public HostFilesTest {
protected:
    /// The program as after its first start, with a configuration active.
    void start(uint32_t active = 0) {
        install_host({});
        CreateStatusBar();
        prefs_init();
        memory_set_startup_pattern(0);
        g_bCycleBasedEngine = false;
        machine_init();
        active_machine_cfg = active;
    }
    void TearDown() override {
        memory_set_startup_pattern(0);
        g_bCycleBasedEngine = false;
        HostFilesTest::TearDown();
    }
    void dialog(std::function<void(Form&)> user) {
        host->forms().acts.push_back(std::move(user));
        ui_machine_config([] {});
    }
    static void collect(const std::vector<FormControl>& controls, std::vector<int>& ids) {
        for (const FormControl& control : controls) {
            if (control.id && control.kind != ControlKind::label) ids.push_back(control.id);
            collect(control.children, ids);
        }
    }
};

TEST_F(MachineConfigDialogTest, ShowsWhatIsSet) {
    start(2);
    machine_configuration& custom = machine_cfg[CUSTOM_CONFIGURATION];
    custom = {3, 2, 1, 0, 4'000'000, 50, 1, 1, "Custom"};
    choices.custom = custom;
    host->settings().set_number("CustomCpuClockFreq", 3'500'000);
    host->settings().set_number("CycleBasedEmulation", 1);
    host->settings().set_text("ExpansionROMPath", "dos.rom");
    memory_set_startup_pattern(256);
    dialog([](Form& form) {
        EXPECT_EQ(form.description.title, "Machine configuration");
        std::vector<int> order;
        collect(form.description.controls, order);
        EXPECT_EQ(order, (std::vector<int>{STANDARD, CUSTOM, MODEL, BASIC, BASIC_PATH, BASIC_BROWSE,
                                           EXPANSION, EXPANSION_PATH, EXPANSION_BROWSE, CHARACTERS,
                                           CHARACTERS_PATH, CHARACTERS_BROWSE, PALETTE, RAM,
                                           PATTERN, CLOCK, CYCLE_BASED, OK, 2}));
        const std::pair<int, const char*> texts[] = {
            {MODEL, "Colour Genie EG2000 North (25 rows)"},
            {BASIC, "<...Use custom BASIC ROM...>"},
            {EXPANSION, "<...Use custom expansion ROM...>"},
            {CHARACTERS, "German Colour Genie charset"},
            {PALETTE, "Northern"},
            {RAM, "16 kbyte"},
            {PATTERN, "Random"},
            {CLOCK, "3500000"},
            {BASIC_PATH, ""},
            {EXPANSION_PATH, "dos.rom"},
            {CYCLE_BASED, "&Cycle based emulation"},
            {CUSTOM, "&Custom machine configuration"}};
        for (const auto& [id, text] : texts) EXPECT_EQ(form.text(id), text) << id;
        EXPECT_EQ(form.value(STANDARD) * 4 + form.value(CUSTOM) * 2 + form.value(CYCLE_BASED), 5);
        form.choose(PATTERN, 2);
        EXPECT_EQ(form.text(PATTERN), "32");
    });
    active_machine_cfg = CUSTOM_CONFIGURATION;
    custom.ram_size = 2; // as the standard models hold it
    memory_set_startup_pattern(7);
    dialog([](Form& form) {
        EXPECT_EQ(form.value(CUSTOM), 1);
        EXPECT_EQ(form.value(MODEL), -1);
        EXPECT_EQ(form.text(RAM), "32 kbyte");
        EXPECT_EQ(form.text(PATTERN), "7");
    });
}

TEST_F(MachineConfigDialogTest, EnablesWhatCanBeChosen) {
    const struct {
        const char* name;
        std::vector<std::pair<int, int>> choices;
        const char* enabled; ///< of the controls below, in their order
    } cases[] = {
        {"standard", {}, "M.......p."},
        {"custom", {{CUSTOM, 1}}, ".BECPRK.p."},
        {"BASIC file", {{CUSTOM, 1}, {BASIC, 3}}, ".BECPRK.p.b"},
        {"other BASIC", {{CUSTOM, 1}, {BASIC, 3}, {BASIC, 1}}, ".BECPRK.p."},
        {"expansion file", {{CUSTOM, 1}, {EXPANSION, 2}}, ".BECPRK.p.e"},
        {"character file", {{CUSTOM, 1}, {CHARACTERS, 3}}, ".BECPRK.p.c"},
        {"all, and back to standard",
         {{CUSTOM, 1}, {BASIC, 3}, {EXPANSION, 2}, {CHARACTERS, 3}, {STANDARD, 1}},
         "M.......p."},
        {"and to custom again",
         {{CUSTOM, 1}, {BASIC, 3}, {EXPANSION, 2}, {STANDARD, 1}, {CUSTOM, 1}},
         ".BECPRK.p.be"},
    };
    for (const auto& c : cases) {
        start();
        dialog([&c](Form& form) {
            for (const auto& [id, value] : c.choices) form.choose(id, value);
            std::string enabled;
            const int ids[] = {MODEL, BASIC, EXPANSION, CHARACTERS, PALETTE, RAM, CLOCK};
            for (size_t n = 0; n < std::size(ids); ++n) {
                enabled += form.is_enabled(ids[n]) ? "MBECPRK"[n] : '.';
                EXPECT_EQ(form.is_enabled(ids[n] + 100'000), form.is_enabled(ids[n])) << "label";
            }
            enabled += form.is_enabled(CYCLE_BASED) && form.is_enabled(PATTERN) ? ".p." : "?";
            for (int rom = 0; rom < 3; ++rom) {
                if (form.is_enabled(BASIC_PATH + rom)) enabled += "bec"[rom];
                EXPECT_EQ(form.is_enabled(BASIC_PATH + rom), form.is_enabled(BASIC_BROWSE + rom));
            }
            EXPECT_EQ(enabled, c.enabled) << c.name;
        });
    }
}

TEST_F(MachineConfigDialogTest, OkAppliesAndRestartsWhenNeeded) {
    constexpr uint32_t BEFORE = 3'000'000, MODELS = 2'216'750; // Hz
    const struct {
        const char* name;
        uint32_t active;
        std::function<void(Form&)> user;
        uint32_t chosen;
        bool restarts;
        uint32_t clock;
        const char* shown;
    } cases[] = {
        {"untouched", 0, [](Form&) {}, 0, false, MODELS, "CG NZ1"},
        {"a model", 0, [](Form& f) { f.choose(MODEL, 2); }, 2, true, MODELS, "CG EUR"},
        {"the same model", 1, [](Form& f) { f.choose(MODEL, 1); }, 1, false, MODELS, "CG NZ2"},
        {"custom", 0, [](Form& f) { f.choose(CUSTOM, 1); }, 4, true, MODELS, "Custom"},
        {"custom twice and back", 1,
         [](Form& f) { f.choose(CUSTOM, 1), f.choose(CUSTOM, 1), f.choose(STANDARD, 1); }, 1, false,
         MODELS, "CG NZ2"},
        {"model, custom and back", 0,
         [](Form& f) { f.choose(MODEL, 2), f.choose(CUSTOM, 1), f.choose(STANDARD, 1); }, 2, true,
         MODELS, "CG EUR"},
        {"from custom, no model", 4, [](Form& f) { f.choose(STANDARD, 1); }, 4, false, BEFORE,
         "Custom"},
        {"from custom to a model", 4, [](Form& f) { f.choose(STANDARD, 1), f.choose(MODEL, 0); }, 0,
         true, MODELS, "CG NZ1"},
        {"BASIC", 4, [](Form& f) { f.choose(BASIC, 0); }, 4, true, MODELS, "Custom"},
        {"the same BASIC", 4, [](Form& f) { f.choose(BASIC, 2); }, 4, false, BEFORE, "Custom"},
        {"expansion", 4, [](Form& f) { f.choose(EXPANSION, 0); }, 4, true, MODELS, "Custom"},
        {"RAM", 4, [](Form& f) { f.choose(RAM, 0); }, 4, true, MODELS, "Custom"},
        {"the same RAM", 4, [](Form& f) { f.choose(RAM, 1); }, 4, false, BEFORE, "Custom"},
        {"characters", 4, [](Form& f) { f.choose(CHARACTERS, 1); }, 4, false, BEFORE, "Custom"},
        {"palette", 4, [](Form& f) { f.choose(PALETTE, 1); }, 4, false, BEFORE, "Custom"},
        {"slowest", 4, [](Form& f) { f.type(CLOCK, "50000"); }, 4, false, 50'000, "Custom"},
        {"too slow", 4, [](Form& f) { f.type(CLOCK, "49999"); }, 4, false, BEFORE, "Custom"},
        {"fastest", 4, [](Form& f) { f.type(CLOCK, "100000000"); }, 4, false, 100'000'000,
         "Custom"},
        {"too fast", 4, [](Form& f) { f.type(CLOCK, "100000001"); }, 4, false, BEFORE, "Custom"},
        {"no clock", 4, [](Form& f) { f.type(CLOCK, "x"); }, 4, false, BEFORE, "Custom"},
        {"clock and restart", 4, [](Form& f) { f.choose(CLOCK, 0), f.choose(BASIC, 0); }, 4, true,
         2'215'200, "Custom"},
        {"clock of a model that is left", 0,
         [](Form& f) { f.choose(CUSTOM, 1), f.type(CLOCK, "4000000"), f.choose(STANDARD, 1); }, 0,
         false, MODELS, "CG NZ1"},
        {"cancelled", 0, [](Form& f) { f.choose(CUSTOM, 1), f.choose(BASIC, 3), f.press_escape(); },
         0, false, BEFORE, ""},
        {"closed", 4,
         [](Form& f) { f.choose(RAM, 0), f.type(CLOCK, "4000000"), f.press_close_button(); }, 4,
         false, BEFORE, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        start(c.active);
        StatusBarPartText(PART_CONFIGURATION, "%s", "");
        z80_state.clock_hz = BEFORE;
        memory[0x9000] = 0x55;
        dialog([&c](Form& form) {
            c.user(form);
            form.press_enter();
        });
        EXPECT_EQ(active_machine_cfg, c.chosen);
        EXPECT_EQ(memory[0x9000], c.restarts ? 0 : 0x55);
        EXPECT_EQ(z80_state.clock_hz, c.clock);
        EXPECT_EQ(host->status_text(0), c.shown);
    }
    EXPECT_EQ(machine_cfg[CUSTOM_CONFIGURATION].ram_size, 2U) << "the closed dialog kept nothing";
    EXPECT_EQ(host->settings().number("CustomCpuClockFreq"), MODELS);
}

TEST_F(MachineConfigDialogTest, KeepsTheCustomConfiguration) {
    start(CUSTOM_CONFIGURATION);
    machine_restart_with_disk_rom(); // as for a disk; the file chosen below takes its place
    for (const char* name : {"basic.rom", "dos.rom"}) {
        std::ofstream(name) << name;
        host->dialogs().choices.push_back({{name, 0}});
    }
    dialog([this](Form& form) {
        const std::pair<int, int> choices[] = {{BASIC, 3},   {EXPANSION, 2}, {CHARACTERS, 3},
                                               {PALETTE, 1}, {RAM, 0},       {CYCLE_BASED, 1}};
        for (const auto& [id, value] : choices) form.choose(id, value);
        form.press(BASIC_BROWSE);
        form.press(EXPANSION_BROWSE);
        EXPECT_EQ(host->dialogs().file_dialogs.back().title, "Select ROM image");
        EXPECT_EQ(form.text(BASIC_PATH) + form.text(EXPANSION_PATH), "basic.romdos.rom");
        form.press(EXPANSION_BROWSE); // cancelled
        host->dialogs().choices.push_back({{std::string(261, 'x'), 0}});
        form.press(EXPANSION_BROWSE);
        EXPECT_EQ(form.text(EXPANSION_PATH), "dos.rom");
        EXPECT_NE(host->status_text(3).find("longer than"), std::string::npos);
        form.type(CHARACTERS_PATH, "characters.rom");
        form.type(PATTERN, "32");
        form.type(CLOCK, "4000000 Hz");
        form.press_enter();
    });
    const machine_configuration& custom = machine_cfg[CUSTOM_CONFIGURATION];
    EXPECT_EQ(custom.basic_rom, 3U);
    EXPECT_EQ(custom.expansion_rom, 2U);
    EXPECT_EQ(custom.character_rom, 3U);
    EXPECT_EQ(custom.palette, 1U);
    EXPECT_EQ(custom.cpu_clock, 4'000'000U);
    EXPECT_EQ(memory_is_16k(), 1);
    EXPECT_EQ(memory[0], 'b') << "from the file that was chosen just now";
    EXPECT_EQ(current_eprom[0], 'd');
    EXPECT_EQ(memory[0x9000], 32) << "the new pattern";
    EXPECT_TRUE(g_bCycleBasedEngine);
    Settings& settings = host->settings();
    EXPECT_EQ(settings.text("BasicROMPath"), "basic.rom");
    EXPECT_EQ(settings.text("ExpansionROMPath"), "dos.rom");
    EXPECT_EQ(settings.text("CharROMPath"), "characters.rom");
    EXPECT_EQ(settings.number("CustomCpuClockFreq"), 4'000'000U);
    EXPECT_EQ(settings.number("CycleBasedEmulation"), 1U);
}

TEST_F(MachineConfigDialogTest, StartUpPatterns) {
    start();
    for (const auto& [text, pattern] : std::map<std::string, uint32_t>{{"Random", 0xFFFFFFFF},
                                                                       {"0", 0},
                                                                       {"255", 255},
                                                                       {"256", 256},
                                                                       {" 7x", 7},
                                                                       {"-1", 0xFFFFFFFF},
                                                                       {"", 0}}) {
        dialog([&typed = text](Form& form) {
            form.type(PATTERN, typed);
            form.press_enter();
        });
        EXPECT_EQ(memory_get_startup_pattern(), pattern) << text;
    }
}

} // namespace
