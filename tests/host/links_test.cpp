#include "host/links.h"

#include "cgenie/memory/memory.h"
#include "host/screen_text.h"
#include "media/basic/basic_tokens.h"
#include "time/deflate.h"
#include "whole_program.h"
#include "z80/z80.h"

namespace {

class LinksTest : public WholeProgramTest {
protected:
    static constexpr const char* LISTING = "10 PRINT \"HI\"\n20 GOTO 10\n";
    /// As Python's zlib and base64 have it.
    static constexpr const char* LINK = "#basic=MzRQCAjy9AtRUPLwVOIyMlBw9w_xVzA04AIA";

    void start_with(const std::string& link) {
        ShellOptions options;
        options.keep_history = true;
        options.page_address = "https://a.b/c";
        options.line.link = link;
        start({}, options);
    }
    std::string shared(int command_id) {
        command(command_id);
        const std::string text = host->clipboard().text().value_or("");
        EXPECT_TRUE(text.starts_with("https://a.b/c#")) << host->status_text(3);
        return text.substr(std::min(text.size(), text.find('#')));
    }
};

TEST_F(LinksTest, AreOfTheWebAndHarmlessWhateverTheyHold) {
    BasicProblem problem;
    EXPECT_EQ(read_link(LINK).bytes, basic_encode(LISTING, problem));
    EXPECT_EQ(link_for_listing(LISTING).substr(0, 7), "#basic=");
    std::vector<uint8_t> bytes;
    for (unsigned n = 0; n < 300; ++n) {
        EXPECT_EQ(read_link(link_for_replay(bytes)).bytes, bytes) << n;
        bytes.push_back(uint8_t(n * n / 7));
    }
    const std::string most = link_for_replay(std::vector<uint8_t>(1 << 20));
    EXPECT_EQ(read_link(most).bytes.size(), size_t(1) << 20);
    const std::string text = LINK;
    const std::pair<std::string, const char*> refused[] = {
        {"basic=", "it is not whole"},
        {text.substr(0, text.size() - 4), "it is not whole"},
        {text + "AAAA", "it is not whole"},
        {link_for_replay(std::vector<uint8_t>((1 << 20) + 1)), "it is not whole"},
        {text + "=", "it has characters that do not belong there"},
        {"replay=%20", "it has characters that do not belong there"},
        {link_for_listing("10 PRINT\nHELLO\n"), "line 2: "}};
    for (const auto& [link, reason] : refused) {
        const Link read = read_link(link);
        EXPECT_TRUE(read.problem.starts_with("The link cannot be opened: " + std::string(reason)));
        EXPECT_TRUE(read.name.empty() && read.bytes.empty());
    }
    EXPECT_EQ(read_link("section-2").problem + read_link("").problem + read_link("").name, "");
}

TEST_F(LinksTest, ProgramRunsAtOnceAndIsSharedAgainWithWhatItDid) {
    start_with(LINK);
    run_frames(3);
    EXPECT_TRUE(screen_text("\n").find("\nHI  ") != std::string::npos) << screen_text("\n");
    EXPECT_FALSE(screen_text("\n").starts_with("HI")) << "and only now";
    EXPECT_EQ(read_link(shared(40285)).bytes, read_link(LINK).bytes);
    command(COMMAND_SAVE_SLOT);
    run_frames(300);
    command(COMMAND_LOAD_SLOT); // what was before leads not here
    run_frames(200);
    const std::string replay = shared(40286);
    emu_close();
    start_with(replay);
    EXPECT_TRUE(host->status_text(3).starts_with("Playing Shared replay.tvr"));
    WindowProcedure({Event::Kind::layout_changed, 0, 0, {}}); // as the start of a page brings it
    run_frames(700);
    EXPECT_EQ(host->status_text(3), "The replay has ended at frame 200: the machine is yours.");
    memory[0x9000] = 0x18; // JR 9000: no prompt any more
    memory[0x9001] = 0xFE;
    z80_state.pc = 0x9000;
    follow_link(link_for_listing("10 PRINT \"NEW\"\n"));
    run_frames(200);
    EXPECT_TRUE(screen_text("|").find("NEW  ") != std::string::npos) << screen_text("\n");
    emu_close();
}

} // namespace
