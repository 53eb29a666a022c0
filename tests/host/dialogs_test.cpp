#include "host/dialogs/dialogs.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "host/screen_text.h"
#include "host/status.h"
#include "platform/headless/headless.h"
#include "support/test_files.h"
#include "wall/machine_host.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

class DialogsTest : public testing::Test {
protected:
    DialogsTest() {
        install_platform(host);
        CreateStatusBar();
    }

    static std::string select(int type) {
        std::string result = "none";
        ui_select_file(type, [&result](const std::optional<std::string>& chosen) {
            result = chosen.value_or("cancelled");
        });
        return result;
    }
    /// The path that comes back when the user chooses this one.
    std::string choose(int type, const std::string& path, int filter = 0) {
        dialogs.choices.emplace_back(FileChoice{path, filter});
        StatusBarText("before");
        const std::string result = select(type);
        const bool save = dialogs.file_dialogs.back().save; // says so only when it has been done
        EXPECT_EQ(host.status_text(3), save ? "before" : "Image attached: " + result + ".");
        return result;
    }

    HeadlessPlatform host{HeadlessOptions{}};
    HeadlessDialogs& dialogs = host.dialogs();
};

TEST_F(DialogsTest, EveryFileDialog) {
    // By type: open or save, title, filters, result for "game"; a type that is not used is empty.
    std::ifstream cases(TEST_SOURCE_DIR "/file_dialogs.txt");
    int type = 0;
    for (std::string expected; std::getline(cases, expected); ++type) {
        if (expected.empty()) continue;
        const std::string stored = choose(type, "game");
        const FileDialog& dialog = dialogs.file_dialogs.back();
        std::string shown = (dialog.save ? "w|" : "r|") + dialog.title + "|";
        for (const FileFilter& f : dialog.filters) shown += f.text + "|" + f.pattern + "|";
        EXPECT_EQ(shown + stored, expected);
    }
    EXPECT_EQ(type, DIALOG_SAVE_WAV + 1);
}

TEST_F(DialogsTest, NamesAndFilters) {
    EXPECT_EQ(choose(DIALOG_SCREENSHOT_AS, "shot", 1), "shot.bmp");
    EXPECT_EQ(choose(DIALOG_SCREENSHOT_AS, "shot", 2), "shot.bmp");
    EXPECT_EQ(dialogs.file_dialogs.back().filter_index, 1);
    EXPECT_EQ(choose(DIALOG_SAVE_VIDEO, "film.mpg"), "film.mpg");
    EXPECT_EQ(dialogs.file_dialogs.back().filter_index, 0); // each type has its own
    EXPECT_EQ(choose(DIALOG_SAVE_VIDEO, "my.films/film"), "my.films/film.avi");

    EXPECT_EQ(select(DIALOG_SCREENSHOT_AS), "cancelled");
    EXPECT_EQ(choose(DIALOG_SCREENSHOT_AS, "shot"), "shot.gif");
    EXPECT_EQ(dialogs.file_dialogs.back().filter_index, 2);
}

TEST_F(DialogsTest, AsksWhereTheDialogCouldNot) {
    const Folder folder;
    const std::string game = folder / "game";
    write_text(game + ".cas", "precious");
    EXPECT_EQ(choose(DIALOG_SAVE_CAS, game + ".cas"), game + ".cas") << "the dialog has asked";
    EXPECT_TRUE(dialogs.questions.empty());
    for (const int answer : {0, NO_ANSWER, 1}) {
        dialogs.answers = {answer};
        dialogs.choices = {FileChoice{game}, FileChoice{game + "2"}}; // another one after a No
        EXPECT_EQ(select(DIALOG_MEMORY_AS_CAS), game + (answer == 1 ? ".cas" : "2.cas"));
    }
}

TEST_F(DialogsTest, AddressesOfTheProgram) {
    memory[0x40A4] = 0x01;
    memory[0x40A5] = 0x58;
    memory[0x40F9] = 0xAB;
    memory[0x40FA] = 0xC9;
    choose(DIALOG_MEMORY_AS_CAS, "game");
    std::array<std::string, 3> addresses;
    ui_get_casdata(&addresses);
    EXPECT_EQ(addresses, (std::array<std::string, 3>{"5801", "C9AB", "0066"}));
    std::string labels;
    for (const FileDialogField& field : dialogs.file_dialogs.back().fields) labels += field.label;
    EXPECT_EQ(labels, "From address:End address:Start address:");

    dialogs.choices.emplace_back(FileChoice{"game", 0, {"6000", "61000000"}});
    select(DIALOG_MEMORY_AS_CAS);
    ui_get_casdata(&addresses);
    EXPECT_EQ(addresses, (std::array<std::string, 3>{"6000", "61000", "0066"}));
    choose(DIALOG_CREATE_WAV, "game");
    EXPECT_TRUE(dialogs.file_dialogs.back().fields.empty());
}

TEST_F(DialogsTest, ScreenToClipboard) {
    const crtc_state before = crtc;
    crtc.vertical_displayed = 3;
    crtc.horizontal_displayed = 5;
    crtc.start_address = 0x4123; // only its low 14 bits count
    const uint8_t codes[] = {0, 1, 26, 30, 31, 32, 'A', 'z', '^', '`', 127, 128, 129, 160, 255};
    std::copy(std::begin(codes), std::end(codes), memory + 0x4123);
    ui_copy_to_clipboard();
    // The machine has a bracket where the host has "^", and an apostrophe for "`".
    const std::string text = "@AZ[_\r\n Az['\r\n\x7F'a\x80\xDF\r\n";
    EXPECT_EQ(host.clipboard().content, text);

    crtc.vertical_displayed = 25;
    crtc.horizontal_displayed = 40;
    host.clipboard().available = false;
    ui_copy_to_clipboard();
    EXPECT_EQ(host.clipboard().content, text);
    host.clipboard().available = true;
    ui_copy_to_clipboard();
    EXPECT_EQ(host.clipboard().content->size(), 1050U);
    crtc = before;
}

TEST_F(DialogsTest, PagesOfTheManualOpenWhereThereIsABrowser) {
    const Folder folder;
    HeadlessOptions options;
    options.program_directory = folder / "bin";
    HeadlessPlatform installed{options};
    install_platform(installed);
    for (const char* name : {"bin", "share/doc/tarvelin"}) {
        std::filesystem::create_directories(folder / name);
    }
    const std::string page = folder / "share/doc/tarvelin/keys.html";
    for (const bool exists : {false, true}) {
        if (exists) write_text(page, "");
        for (const bool browser : {false, true}) {
            installed.dialogs().has_browser = browser;
            ui_open_manual("keys.html");
            EXPECT_EQ(installed.dialogs().pages.size(), exists && browser);
        }
    }
    EXPECT_EQ(installed.dialogs().pages[0], "file://" + page);
}

} // namespace
