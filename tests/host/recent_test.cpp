#include "host/recent.h"

#include "host/whole_program.h"
#include "media/files/cassette_files.h"
#include "media/tape.h"
#include "z80/z80.h"

namespace {

class RecentTest : public WholeProgramTest {
protected:
    /// What the menu shows.
    std::string items() {
        std::string all;
        host->sink().menu_opens();
        for (int id = 40260; id < 40270; ++id) {
            const ItemState state = host->window().item_state(id);
            if (state == ItemState::hidden) break;
            all += state == ItemState::greyed ? "grey " : "";
            all += menu_item_text(id).substr(0, menu_item_text(id).find('\t')) + ", ";
        }
        return all;
    }
};

TEST_F(RecentTest, FilesAreOpenedAgainAsTheyWereOpened) {
    ShellOptions options;
    options.remembers_files = true;
    const std::string tape = "a|b%41 &\xFF.cas";
    write_text(tape, std::string("\x66G\0\0", 4));
    write_text("game.cmd", std::string("\x01\x03\x00\x60\xAA\x02\x02\x00\x60", 9));
    write_text("ok.dsk", std::string(89600, '\0'));
    start({"/i", "ok.dsk", "game.cmd"}, options);
    host->dialogs().choices.push_back({{tape, 0}});
    command(COMMAND_ATTACH_CAS);
    tape_detach_cas();
    std::filesystem::remove("ok.dsk");
    EXPECT_EQ(items(), "&1 a|b%41 &&\xFF.cas, &2 game.cmd, grey &3 ok.dsk, ");
    command(40260);
    EXPECT_EQ(tape_cas_is_attached(), 1);
    command(40261);
    EXPECT_EQ(z80_state.pc, 0x6000);
    EXPECT_EQ(items(), "&1 game.cmd, &2 a|b%41 &&\xFF.cas, grey &3 ok.dsk, ");
    command(COMMAND_CLEAR_RECENT);
    EXPECT_EQ(items(), "");
    for (int n = 0; n < 12; ++n) note_opened(Opened::started, std::to_string(n));
    EXPECT_EQ(items(), "grey &1 11, grey &2 10, grey &3 9, grey &4 8, grey &5 7, grey &6 6, "
                       "grey &7 5, grey &8 4, grey &9 3, grey &0 2, ");
    emu_close();
}

TEST_F(RecentTest, WithoutAWindowNothingIsKeptAndDamageDoesNoHarm) {
    write_text("list.bas", "10 PRINT");
    start({"list.bas"});
    EXPECT_FALSE(stored_text("RecentFiles"));
    platform().settings().set_text("RecentFiles", "|x/a|s|s/%4|s/%zz|s/%00|sr|s/ok|s/ok|\n|c/%");
    EXPECT_EQ(items(), "grey &1 ok, ");
    emu_close();
}

} // namespace
