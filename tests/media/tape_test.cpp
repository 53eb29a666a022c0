#include "media/damage.h"
#include "media/files/cassette_files.h"
#include "media/tape.h"

#include "cgenie/memory/memory.h"
#include "cgenie/roms.h"
#include "media/tape_audio.h"
#include "support/fake_host.h"
#include "support/full_disk.h"
#include "support/host_files.h"
#include "support/posix.h"

namespace {

namespace fs = std::filesystem;

std::string operator""_b(const char* text, size_t size) { return {text, size}; }

class Tape : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        folder = fs::current_path();
        memory_set_basic_rom(0);
        fake_host = {};
    }
    void TearDown() override {
        tape_detach_cas();
        tape_get_cas_name().clear();
        HostFilesTest::TearDown();
    }

    static std::string next(size_t count) {
        std::string bytes;
        while (bytes.size() < count) bytes += char(tape_read_one_byte());
        return bytes;
    }
    static void save(const std::string& bytes) {
        for (const char c : bytes) tape_write_one_byte(uint8_t(c));
    }
    fs::path folder;
};

const std::string CGT = "Colour Genie - Virtual Tape File"; // 32 bytes

TEST_F(Tape, HeadersAndKinds) {
    const std::string text = CGT + " 123456" + "\0"_b; // the zero byte at 39
    const std::string leader(255, '\xAA');
    const struct {
        const char* name;
        std::string bytes;
        int header, position; ///< and where the file stands once attached
        int kind;
        char first; ///< of the name
    } cases[] = {
        {"CGT, BASIC", text + "\x66" + "Axyz", 40, 40, 1, '-'},
        {"CGT, SYSTEM", text + "\x66\x55" + "GAME", 40, 40, 2, 'G'},
        {"CGT, bare text", CGT + "\0\x66\x55Q"_b, 33, 33, 2, 'Q'},
        {"CGT, leader behind the text", text + "\xAA\x66\x55Q", 0, 41, 2, 'Q'},
        {"CGT, no zero byte", CGT + "\x66\x55Q", 0, 35, 0, '-'},
        {"CGT, nothing behind", text, 0, 40, 0, '-'},
        {"text one byte short", CGT.substr(0, 31) + "\0\x66\x55Q"_b, 0, 0, 2, 'Q'},
        {"text in small letters", "colour" + CGT.substr(6) + "\0\x66\x55Q"_b, 0, 0, 2, 'Q'},
        {"sync, SYSTEM", "\x66\x55NAME", 0, 0, 2, 'N'},
        {"sync, BASIC", "\x66\x41\x55", 0, 0, 1, '-'},
        {"sync, end", "\x66", 0, 0, 1, '-'},
        {"SYSTEM without a name", "\x66\x55", 0, 0, 2, '\xFF'},
        {"leader, SYSTEM", leader + "\x66\x55NAME", 0, 0, 2, 'N'},
        {"leader, BASIC", leader + "\x66\x42", 0, 0, 1, '-'},
        {"leader, another sync", "\xAA\x77\x55N", 0, 0, 2, 'N'},
        {"leader, zero", leader + "\0\x66\x55N"_b, 0, 0, 0, '-'},
        {"leader alone", leader, 0, 0, 0, '-'},
        {"zeros, SYSTEM", "\0\0\x66\x55N"_b, 0, 0, 2, 'N'},
        {"sync only before the zero", "x\x66\x55N\0y"_b, 0, 0, 0, '-'},
        {"empty", "", 0, 0, 0, '-'},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        write_text("t.cas", c.bytes);
        const std::string rest = c.bytes.substr(std::min(size_t(c.position), c.bytes.size()));
        ASSERT_EQ(tape_attach_cas("t.cas"), 1);
        EXPECT_EQ(next(rest.size() + 3), rest + "\xFF\xFF\xFF");
        char name = '-';
        EXPECT_EQ(tape_cas_type(&name), c.kind);
        EXPECT_EQ(name, c.first);
        EXPECT_EQ(next(c.bytes.size() + 1), c.bytes + "\xFF") << "from the start";

        tape_cas_rewind();
        if (c.bytes.empty()) continue;
        EXPECT_EQ(next(1), c.bytes.substr(0, 1));
        tape_cas_skip_header();
        EXPECT_EQ(next(1), (c.bytes + "\xFF").substr(c.header ? size_t(c.header) : 1, 1));
        tape_cas_skip_header();
        EXPECT_EQ(next(1), (c.bytes + "\xFF\xFF").substr(c.header ? size_t(c.header) + 1 : 2, 1))
            << "the tape does not go back";
    }
}

TEST_F(Tape, OnlyRegularFilesAreAttached) {
    constexpr uintmax_t LIMIT = 16 << 20;
    fs::create_directories("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* path : {"most", "huge"}) write_text(path, "\xFF");
    fs::resize_file("most", LIMIT);
    fs::resize_file("huge", LIMIT + 1);
    write_text("good", "\xFFgood");
    for (const char* path : {"", "gone", "folder", "pipe", "huge", "/dev/zero", "no/where"}) {
        SCOPED_TRACE(path);
        for (int (*attach)(const std::string&) : {tape_attach_cas, bas_to_cas_open}) {
            ASSERT_EQ(tape_attach_cas("good"), 1);
            EXPECT_EQ(tape_get_cas_name(), "good");
            tape_read_in = 1;
            EXPECT_EQ(attach(path), 0);
            EXPECT_EQ(tape_read_in, 0);
            EXPECT_EQ(tape_cas_is_attached(), 0);
            EXPECT_EQ(tape_get_cas_name(), "");
            EXPECT_EQ(tape_read_one_byte(), 0) << "nothing is left in";
        }
        EXPECT_EQ(is_tokenized_bas(path), 0);
    }
    EXPECT_EQ(is_tokenized_bas("good") & is_tokenized_bas("most"), 1);
    EXPECT_EQ(tape_attach_cas("most"), 1);

    tape_get_cas_name() = "good";
    EXPECT_EQ(tape_attach_cas(tape_get_cas_name()), 1) << "the name is its own argument";
    EXPECT_EQ(bas_to_cas_open(tape_get_cas_name()), 1);
    tape_detach_cas();
    tape_get_cas_name() = "remembered";
    char name = '-';
    EXPECT_EQ(tape_cas_type(&name), 0);
    tape_cas_rewind();
    tape_cas_skip_header();
    tape_detach_cas();
    EXPECT_EQ(tape_get_cas_name(), "remembered") << "no image, nothing to forget";
}

TEST_F(Tape, TokenizedBasicBecomesATape) {
    std::string program;
    for (int n = 0; n < 10000; ++n) program += char(n * 7);
    const std::string head = std::string(256, '\0') + "\xA5\xD3\xD3\xD3";
    for (const auto& [path, name] : {std::pair<std::string, char>{"game.bas", 'G'},
                                     {(folder / "game.bas").string(), '/'},
                                     {"9.bas", '9'}}) {
        write_text("t.cgt", CGT + "\0\x66"_b);
        EXPECT_EQ(tape_attach_cas("t.cgt"), 1);
        write_text(path, "\xFF" + program);
        EXPECT_EQ(bas_to_cas_open(path), 1);
        tape_cas_skip_header(); // the last image's is gone
        EXPECT_EQ(next(head.size() + program.size() + 4),
                  head + name + program + "\x1A\xFF\xFF"); // from its start
    }
    write_text("empty.bas", "\xFF");
    EXPECT_EQ(bas_to_cas_open("empty.bas"), 1);
    EXPECT_EQ(next(263), head + "E\x1A\xFF");
}

TEST_F(Tape, SavesReachTheFileByteByByte) {
    write_text("old.cas", "\x66old");
    ASSERT_EQ(tape_attach_cas("old.cas"), 1);
    tape_write_case_header(); // cancelled
    save("dropped");
    EXPECT_EQ(next(1), "\x66") << "the old tape is still in";
    EXPECT_EQ(read_text("old.cas"), "\x66old");

    fake_host.save_path = "new.cas";
    write_text("new.cas", "what was there before");
    tape_ready = false;
    tape_write_case_header();
    EXPECT_EQ(fake_host.save_questions, 1) << "the cassette system is not ready";
    tape_ready = true;
    tape_write_case_header();
    EXPECT_EQ(fake_host.save_questions, 2);
    EXPECT_EQ(tape_get_cas_name(), "new.cas");
    const std::string bytes = "\xAA\xAA\x66X\0\xFF\x1A\x0D"_b;
    for (size_t n = 0; n < bytes.size(); ++n) {
        EXPECT_EQ(read_text("new.cas"), bytes.substr(0, n));
        save(bytes.substr(n, 1));
    }
    EXPECT_EQ(next(1), "\xFF") << "the tape stands behind what was saved";
    char name = '-';
    EXPECT_EQ(tape_cas_type(&name), TAPE_BASIC);
    EXPECT_EQ(next(2), "\xAA\xAA");
    save("more");
    EXPECT_EQ(read_text("new.cas"), bytes + "more") << "a rewound tape is not overwritten";

    tape_write_case_header(); // the very file that is in
    save("again");
    EXPECT_EQ(read_text("new.cas"), "again");
    tape_detach_cas();
    save("dropped");
    EXPECT_EQ(read_text("new.cas"), "again");
    EXPECT_EQ(fake_host.status[3], "");
}

TEST_F(Tape, SavesThatFailAreToldOnce) {
    fs::create_directories("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* path : {"folder", "pipe", "/dev/full", "no/where.cas"}) {
        fake_host.save_path = path;
        tape_create_cas();
        EXPECT_EQ(fake_host.status[3], std::string(path) + ": cannot be written");
        EXPECT_EQ(tape_cas_is_attached(), 0);
        save("dropped");
        EXPECT_EQ(tape_dump_cas(path, "0", "0", "0"), 0);
    }

    fake_host.save_path = "full.cas";
    tape_create_cas();
    fake_host.status[3].clear();
    const FullDisk full(10);
    save("0123456789");
    EXPECT_EQ(fake_host.status[3], "");
    save("A");
    EXPECT_EQ(fake_host.status[3], "full.cas: cannot be written");
    fake_host.status[3].clear();
    save("BC");
    EXPECT_EQ(fake_host.status[3], "") << "told before";
    EXPECT_EQ(tape_dump_cas("./dump.cas", "0", "0", "0"), 0);
    EXPECT_EQ(fake_host.status[3], "./dump.cas: cannot be written");
    EXPECT_EQ(read_text("full.cas"), "0123456789");
}

/// Takes a machine-code tape apart: "" when it is one, else what is wrong.
std::string decode(const std::string& tape, std::string* name, std::vector<unsigned>* blocks,
                   std::vector<uint8_t>* image, unsigned* entry) {
    size_t at = 0;
    const auto byte = [&] { return unsigned(uint8_t(tape.at(at++))); };
    while (at < tape.size() && byte() == 0xAA) {
    }
    if (at != 257) return "leader";
    if (byte() != 0x55) return "mark";
    *name = tape.substr(at, 6);
    at += 6;
    unsigned kind;
    while ((kind = byte()) == 0x3C) {
        const unsigned count = (byte() + 255) % 256 + 1;
        const unsigned low = byte(), high = byte();
        unsigned sum = low + high;
        blocks->push_back(high * 256 + low);
        for (unsigned n = 0; n < count; ++n) {
            image->push_back(uint8_t(byte()));
            sum += image->back();
        }
        if (byte() != sum % 256) return "checksum";
    }
    if (kind != 0x78) return "end block";
    *entry = byte();
    *entry += 256 * byte();
    return at == tape.size() ? "" : "more bytes";
}

TEST_F(Tape, MemoryIsExported) {
    for (size_t n = 0; n < MEMORY_SIZE; ++n) memory[n] = uint8_t(n * 7 + n / 256);
    memory[0xF010] = 0x05;
    const std::string here = folder.string() + "/";
    const struct {
        std::string path;
        const char *start, *end, *entry;
        const char* name;
        std::vector<unsigned> blocks; ///< addresses
        unsigned last, entered;
    } cases[] = {
        {here + "a.cas", "5000", "50FF", "5000", "A     ", {0x5000}, 0x50FF, 0x5000},
        {"./longer-name.cas", "5000", "5100", "1", "LONGER", {0x5000, 0x5100}, 0x5100, 1},
        {here + "x/../d.tar.cas", "4FFF", "4fff", "ABCDE", "D     ", {0x4FFF}, 0x4FFF, 0xABCD},
        {here + "back\\slash", "FFFF", "FFFF", "ffff", "SLASH ", {0xFFFF}, 0xFFFF, 0xFFFF},
        {here + "g\xE4nsE1.x", "F010", "F010", "", "G\xC4NSE\x11", {0xF010}, 0xF010, 0},
        {here + ".cas", "", "0", "nought", "      ", {0}, 0, 0},
    };
    fs::create_directories("x");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(tape_dump_cas(c.path, c.start, c.end, c.entry), 1);
        std::string name;
        std::vector<unsigned> blocks;
        std::vector<uint8_t> image, want;
        unsigned entry = 0;
        EXPECT_EQ(decode(read_text(c.path), &name, &blocks, &image, &entry), "");
        EXPECT_EQ(name, c.name);
        EXPECT_EQ(blocks, c.blocks);
        for (unsigned n = c.blocks[0]; n <= c.last; ++n) {
            // The colour RAM's upper half is not there, nor is what stands above FF00.
            want.push_back(n == 0xF010 ? 0xF5 : n == 0xFFFF ? 0xFF : uint8_t(n * 7 + n / 256));
        }
        EXPECT_EQ(image, want);
        EXPECT_EQ(entry, c.entered);
        const std::vector<uint8_t> tape = read_file(c.path);
        for (size_t size = 0; size <= tape.size(); ++size) {
            const bool whole = tape_damage({tape.data(), size}).empty();
            EXPECT_EQ(whole, size == tape.size()) << "cut at " << size;
        }
        ASSERT_EQ(tape_attach_cas(c.path), 1);
        char first = 0;
        EXPECT_EQ(tape_cas_type(&first), TAPE_MACHINE_CODE);
        EXPECT_EQ(first, c.name[0]);
    }
    EXPECT_EQ(fake_host.status[3], "");
    EXPECT_EQ(tape_dump_cas("./all.cas", "0", "FFFF", "0"), 1);
    EXPECT_EQ(read_text("all.cas").size(), 256U + 8 + 256 * (5 + 256) + 3);

    EXPECT_EQ(tape_dump_cas("./none.cas", "5000", "4FFF", "0"), 0);
    EXPECT_FALSE(fs::exists("none.cas"));
    EXPECT_EQ(fake_host.status[3], "./none.cas: not written, the end is below the start");
    EXPECT_EQ(tape_dump_cas("bare.cas", "5000", "5000", "0"), 0);
    EXPECT_EQ(read_text("bare.cas"), std::string(256, '\xAA') + "\x66\x55");
}

} // namespace
