// A tour of the program: every item of the menu and every command without one is given to a running
// machine, and its effect is looked for.

#include "cgenie/hires_lowe.h"
#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "cgenie/video.h"
#include "core/pacing/pacing.h"
#include "core/pacing/speed.h"
#include "host/canvas.h"
#include "host/display.h"
#include "host/film_bar.h"
#include "host/main_window.h"
#include "host/rewind.h"
#include "host/screenshot.h"
#include "host/states.h"
#include "host/whole_program.h"
#include "media/files/cassette_files.h"
#include "media/files/program_files.h"
#include "media/files/tape_sound_files.h"
#include "media/printer.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "sound/ym2149.h"
#include "time/history.h"
#include "z80/z80.h"

#include <functional>
#include <set>

namespace {

namespace fs = std::filesystem;

struct Stop {
    int id;
    std::function<void()> prepare; ///< what the user has at hand, and will answer
    std::function<void()> check;
    bool halts = false; ///< the machine stands still afterwards
};

class TourTest : public WholeProgramTest {
protected:
    void start(const Arguments& arguments = {}) {
        WholeProgramTest::start(arguments);
        run_frames(3);
    }
    void choose(const std::string& path) { host->dialogs().choices.push_back({{path, 0}}); }
    std::function<void()> chosen(const std::string& path) {
        return [this, path] { choose(path); };
    }
    void in_next_form(std::function<void(HeadlessForm&)> act) {
        host->forms().acts.push_back(std::move(act));
    }
    std::function<void()> status(const std::string& text) {
        return [this, text] { EXPECT_EQ(host->status_text(3), text); };
    }
    static char next_typed() {
        int done = 0;
        return char(keyboard_type_bas_file(&done));
    }
    /// An option, its mark, and its mark in the menu where it has an item; and back again.
    std::function<void()> option(const bool& flag, int id, bool value) {
        return [this, &flag, id, value] {
            for (const bool now : {value, !value}) {
                EXPECT_EQ(flag, now);
                expect_mark(id, now);
                EXPECT_EQ(pacing.ticks, 0) << "the pacing begins anew";
                command(id);
            }
        };
    }
    std::function<void()> scale(WindowScale chosen) {
        return [this, chosen] {
            EXPECT_EQ(picture_scaling().whole, chosen == WindowScale::whole);
            expect_mark(40222, chosen == WindowScale::whole);
            expect_mark(40223, chosen == WindowScale::fill);
        };
    }
    void expect_mark(int id, bool value) {
        EXPECT_EQ(is_menu_item_checked(id), value);
        if (!menu_item_text(id).empty()) {
            EXPECT_EQ(host->window().checked(id), value);
        }
    }

    std::vector<Stop> stops();
    void visit(const Stop& stop);
};

std::vector<Stop> TourTest::stops() {
    const auto nothing = [] {};
    const auto with_cmd = [this] {
        std::ofstream("game.cmd") << std::string("\x01\x03\x00\x60\xAA\x02\x02\x00\x60", 9);
        choose("game.cmd");
    };
    const auto cmd_runs = [this] {
        EXPECT_EQ(memory[0x6000], 0xAA);
        EXPECT_EQ(z80_state.pc, 0x6000);
        EXPECT_EQ(host->status_text(3), "Autoloaded: game.cmd");
    };
    const auto with_listing = [this] {
        std::ofstream("list.bas") << "10 PRINT";
        choose("list.bas");
    };
    const auto with_cassette = [] { write_text("game.cas", std::string("\x66G\0\0", 4)); };
    const auto with_recording = [] {
        tape_create_wav("tape.wav", 44100);
        for (int n = 0; n < 100; ++n) tape_set_motor(n % 2 == 0, z80_state.t_count + n * 1000);
    };
    std::vector<Stop> list = {
        {102, nothing, [this] { EXPECT_EQ(host->events().poll().kind, Event::Kind::close); }},
        {40130,
         [this] {
             report({.text = "lost", .file = "a.cas", .reason = "cut short"});
             host->forms().acts.emplace_back([](HeadlessForm& form) {
                 EXPECT_NE(form.text(2).find("  lost: a.cas: cut short\n"), std::string::npos);
             });
         },
         [this] { EXPECT_EQ(host->status_text(3), "lost"); }},
        {103, nothing, [this] { EXPECT_EQ(host->dialogs().abouts.size(), 1U); }},
        {104, nothing,
         [this] {
             EXPECT_EQ(host->title(), "Tarvelin - (Suspended)");
             expect_mark(104, true);
         },
         true},
        {105, [] { z80_state.nmi = 0; }, [] { EXPECT_EQ(z80_state.nmi, 1); }},
        {106, nothing, option(g_Timer, 106, false)},
        {108, nothing,
         [this] {
             EXPECT_EQ(host->title(), "Tarvelin - (Monitor)");
             expect_mark(108, true);
         },
         true},
        {109,
         [] {
             keyboard_open_from_buffer("RUN");
             memory[0x9000] = 0x55;
         },
         [] { EXPECT_EQ(memory[0x9000] + z80_state.pc + next_typed(), 0); }},
        {110, with_cmd, cmd_runs},
        {111, with_listing, [] { EXPECT_EQ(next_typed(), '1'); }},
        {112, [] { last_file_name = "tour"; }, [] { EXPECT_TRUE(fs::exists("tour0000.gif")); }},
        {118, nothing,
         [this] {
             option(g_bSound, 118, false)();
             EXPECT_FALSE(host->audio().device);
         }},
        {120, chosen("new"), [] { EXPECT_EQ(tape_wav_is_open() && fs::exists("new.wav"), true); }},
        {121, with_recording,
         [this] {
             EXPECT_EQ(tape_wav_is_open(), 0);
             EXPECT_EQ(host->status_text(2), "");
             status("Tape image detached.")();
         }},
        {122, nothing, [this] { expect_mark(122, true); }},
        {123,
         [this, with_cassette] {
             with_cassette();
             choose("game.cas");
         },
         status("CAS image attached: game.cas")},
        {124,
         [with_cassette] {
             with_cassette();
             tape_attach_cas("game.cas");
             StatusBarPartText(2, "0042");
         },
         [this] {
             EXPECT_EQ(tape_cas_is_attached(), 0);
             EXPECT_EQ(host->status_text(2), "");
             status("Tape image detached.")();
         }},
        {125,
         [with_cassette] {
             with_cassette();
             tape_attach_cas("game.cas");
             tape_read_one_byte();
             check_menu_item(122, true);
         },
         [this] {
             EXPECT_EQ(tape_read_one_byte(), 0x66);
             expect_mark(122, false);
         }},
        {126, chosen("shot.bmp"), [] { EXPECT_EQ(read_file("shot.bmp")[0], 'B'); }},
        {127,
         [this] {
             host->dialogs().choices.push_back({{"./part.cas", 0, {"5000", "5001", "5000"}}});
         },
         [] { EXPECT_EQ(read_file("part.cas").size(), 256U + 8 + 6 + 1 + 3); }},
        {128, nothing, option(video_cut, 128, true)},
        {129, nothing, option(video_page, 129, true)},
        {131,
         [this] {
             memory[0x9000] = 0x55;
             snapshot_save("state.jzs", memory_get_ram());
             memory[0x9000] = 0;
             choose("state.jzs");
         },
         [] { EXPECT_EQ(memory[0x9000], 0x55); }},
        {132, chosen("state"), [] { EXPECT_EQ(read_file("state.jzs").size(), 49702U); }},
        {134, nothing, option(g_bDblScan, 134, false)},
        {135, with_cmd, cmd_runs},
        {141,
         [this] {
             in_next_form([](HeadlessForm& form) {
                 form.choose(1008, 2);
                 form.press_enter();
             });
         },
         [this] { EXPECT_EQ(host->status_text(0), "CG EUR"); }},
        {145, [] { run_frames(40); },
         [this] {
             // 24 rows, of 40 characters and the line's end.
             EXPECT_EQ(host->clipboard().content.value_or("").size(), 24U * 42);
         }},
        {146, [] { memory[0x01FB] = 0; }, [] { EXPECT_EQ(memory[0x01FB], 0xED); }},
        {40007, nothing, [this] { EXPECT_TRUE(host->window().full_screen); }},
        {40033, nothing, status("All disks detached.")},
        {40034,
         [this, with_recording] {
             with_recording();
             tape_close_wav();
             choose("tape.wav");
         },
         [] { EXPECT_EQ(tape_wav_is_open(), 1); }},
        {40040, [this] { host->clipboard().content = "RUN"; },
         [] { EXPECT_EQ(next_typed(), 'R'); }},
        {40045, hires_lowe_init,
         [this] {
             EXPECT_EQ(lowe.enabled, 0U);
             expect_mark(40045, true);
             expect_mark(40046, false);
         }},
        {40046, nothing,
         [this] {
             EXPECT_EQ(lowe.enabled, 1U);
             expect_mark(40045, false);
             expect_mark(40046, true);
         }},
        {40050, nothing,
         [this] {
             option(g_1bitDisplay, 40050, true)();
             EXPECT_EQ(canvas.header.bits, 1);
         }},
        {40052, nothing,
         [this] {
             EXPECT_EQ(canvas.header.bits, 32);
             expect_mark(40052, true);
         }},
        {40054,
         [this] {
             choose("film");
             in_next_form([](HeadlessForm& form) { form.press_enter(); }); // the compression
         },
         [this] {
             expect_mark(40054, true);
             EXPECT_TRUE(fs::exists("film.avi"));
         }},
        {40057, nothing, option(g_KeyMapping, 40057, true)},
        {40058, nothing,
         [this] {
             option(g_GiantScreen, 40058, true)();
             EXPECT_EQ(canvas.width, 768);
         }},
        {40059, nothing,
         [this] {
             HeadlessForm* form = host->forms().find("Video setup");
             EXPECT_TRUE(form && form->is_open());
         }},
        {40060, nothing,
         [this] {
             option(printer_enabled, 40060, true)();
             EXPECT_TRUE(fs::exists("data/printer.txt"));
         }},
        {40120, chosen("sound"),
         [this] {
             expect_mark(40120, true);
             EXPECT_TRUE(fs::exists("sound.wav"));
         }},
        {40121,
         [this] {
             in_next_form([](HeadlessForm& form) {
                 form.choose(1036, 17);
                 form.press_enter();
             });
         },
         [] {
             EXPECT_EQ(tape_get_compare_level(), 17);
             tape_set_compare_level(0);
         }},
        {40122, nothing, option(g_bRunInBackground, 40122, true)},
        {40123, nothing, option(save_video_ram_w_screenshot, 40123, true)},
        {40131, nothing, option(ym2149_clean, 40131, true)},

        {40213, nothing,
         [] {
             EXPECT_EQ(history_is_kept(), true);
             EXPECT_TRUE(is_menu_item_checked(40213));
             history_stop();
         }},
        {40200,
         [this] {
             choose_slot(0);
             in_next_form([](HeadlessForm& form) { form.choose(101, 1); });
         },
         [] { EXPECT_EQ(current_slot(), 1); }},
        {40201, [] { choose_slot(0); }, [] { EXPECT_TRUE(fs::exists("data/states/slot-0.tvs")); }},
        {40202,
         [] {
             choose_slot(0);
             save_slot(0);
             memory[0x9000] ^= 1;
         },
         [] { EXPECT_TRUE(load_can_be_undone()); }},
        {40203, [] { choose_slot(1); }, status("Slot 2: empty")},
        {40204, [] { choose_slot(0); }, status("Slot 9: empty")},
        {40207, [] { history_start({}); },
         [] {
             EXPECT_TRUE(film_bar_is_shown() && g_bPaused);
             rewind_end();
             history_stop();
         }},
        {40208, [this] { choose("new.tvr"); }, status("Recording a replay: new.tvr")},
        {40209, [this] { choose("new.tvr"); },
         status("Playing new.tvr. Escape gives the machine to you.")},
        {40210, nothing, option(speed_choices.turbo, 40210, true)},
        {40211, nothing, status("Slow motion: half speed")},
        {40219, nothing, option(speed_choices.fast_tapes, 40219, true)},
        {40221, nothing, option(shell_state.fixed_window, 40221, true)},
        {40222, nothing, scale(WindowScale::whole)},
        {40223, nothing, scale(WindowScale::fill)},
        {40224, nothing, option(shell_state.window_smooth, 40224, true)},
        {40220, nothing, option(shell_state.ask_memory_size, 40220, true)},
        {40230, nothing, [this] { EXPECT_TRUE(host->forms().find("Welcome")->is_open()); }},
        {40231, nothing, status("The manual is not installed")},
        {40232, nothing,
         [this] {
             status("The manual is not installed")();
             expect_mark(40228, true);
         }},
        {40228, nothing,
         [this] {
             expect_mark(40228, true);
             EXPECT_EQ(host->window().keyboard_place, KeyboardPlace::docked);
         }},
        {40229, nothing,
         [this] {
             expect_mark(40229, true);
             EXPECT_EQ(host->window().keyboard_place, KeyboardPlace::floating);
         }},
        {40299, nothing, option(shell_state.debugger_place.open, 40299, true)},
        {40233, nothing, option(shell_state.monitor_f12, 40233, true)},
        {40205,
         [this] {
             save_state_as("given.tvs");
             choose("given.tvs");
         },
         [] { EXPECT_TRUE(load_can_be_undone()); }},
        {40271, chosen("work"), status("Disk: 2 side(s), 40 tracks, 10 sectors, 100 kb.")},
        {40272, chosen("work"), status("The next CSAVE goes to work.cas")},
        {40277, nothing, [this] { EXPECT_TRUE(host->forms().find("Cassette")->is_open()); }},
        {40278, nothing, [this] { EXPECT_TRUE(host->forms().find("Disk directory")->is_open()); }},
        {40298, nothing, [this] { EXPECT_EQ(host->window().popup.at(5).text, "&Cassette"); }},
        {40206, chosen("saved"), [] { EXPECT_TRUE(fs::exists("saved.tvs")); }},
        {40212, nothing, option(shell_state.resume, 40212, true)},
    };
    for (const int frames : {0, 1, 2, 3, 4}) {
        list.push_back({40214 + frames, nothing, [this, frames] {
                            EXPECT_EQ(frames_ahead, uint32_t(frames));
                            expect_mark(40214 + frames, true);
                        }});
    }
    list.push_back({40279, nothing, status("")});
    for (const int tube : {2, 1, 0}) {
        list.push_back({40225 + tube, nothing, [this, tube] {
                            EXPECT_EQ(host->picture_tube().started, tube != 0);
                            expect_mark(40225 + tube, true);
                        }});
    }
    for (int id = 40240; id <= 40252; ++id) {
        list.push_back({id, nothing, status("The example is not installed")});
    }
    const auto look = [this] { host->sink().menu_opens(); };
    for (int id = 40260; id <= 40270; ++id) list.push_back({id, look, status("")});
    for (const unsigned drive : {0, 1, 2, 3}) {
        list.push_back({40018 + int(drive),
                        [this] {
                            std::ofstream("none.dsk") << "no disk";
                            choose("none.dsk");
                        },
                        [this] {
                            EXPECT_EQ(host->dialogs().file_dialogs.back().title,
                                      "Attach disk image...");
                            status("Unsupported disk image.\n")();
                        }});
        list.push_back({40022 + int(drive), nothing,
                        status("Disk detached from drive #" + std::to_string(drive))});
        list.push_back({40273 + int(drive), nothing,
                        status("There is no disk in drive :" + std::to_string(drive) + ".")});
        list.push_back({40290 + int(drive), chosen("new" + std::to_string(drive)),
                        status("Disk: 2 side(s), 40 tracks, 10 sectors, 100 kb.")});
        list.push_back({40294 + int(drive), nothing,
                        status("There is no disk in drive :" + std::to_string(drive) + ".")});
    }
    return list;
}

void TourTest::visit(const Stop& stop) {
    SCOPED_TRACE(stop.id);
    start();
    stop.prepare();
    command(stop.id);
    stop.check();
    EXPECT_EQ(host->status_text(3).find("not available"), std::string::npos);
    EXPECT_TRUE(host->dialogs().choices.empty() && host->forms().acts.empty()) << "nobody asked";
    EXPECT_EQ(g_bActive, !stop.halts);
    const int64_t cycles = z80_state.t_count;
    run_paced_frame();
    EXPECT_GT(z80_state.t_count, cycles) << "it runs on";
    if (g_bFullScreen) toggle_full_screen();
    tape_close_wav();
    emu_close();
    EXPECT_TRUE(host->forms().forms.empty()) << "a form is left";
    fs::remove(SETTINGS);
}

void collect(const std::vector<MenuEntry>& entries, std::set<int>& ids) {
    for (const MenuEntry& entry : entries) {
        if (entry.id) ids.insert(entry.id);
        EXPECT_EQ(entry.id != 0, menu_tip(entry.id).ends_with('.')) << entry.text;
        collect(entry.children, ids);
    }
}

TEST_F(TourTest, EveryCommandByItsNumber) {
    later = true;
    std::set<int> in_menu, visited;
    collect(main_menu(), in_menu);
    for (const Stop& stop : stops()) {
        EXPECT_TRUE(visited.insert(stop.id).second) << stop.id << " twice";
        visit(stop);
    }
    for (const int without_item : {110, 128, 129, 146, 40045, 40046, 40050, 40122}) {
        EXPECT_TRUE(in_menu.insert(without_item).second) << without_item;
    }
    start();
    command(40298);
    collect(host->window().popup, in_menu); // with some of its own
    in_menu.insert(40298);
    emu_close();
    EXPECT_EQ(visited, in_menu);
}

} // namespace
