// Zip files that open as if they were folders, and several files that are dropped at a time.

#include "files/whole_file.h"
#include "host/whole_program.h"
#include "media/files/cassette_files.h"
#include "media/files/drive_files.h"

#include <zip.h>

namespace {

using Contents = std::vector<std::pair<std::string, std::string>>;

class ZipFilesTest : public WholeProgramTest {
protected:
    void SetUp() override {
        later = true;
        WholeProgramTest::SetUp();
        start();
    }
    static std::string disk() { return std::string(102400, '\x14'); }
    static void make_zip(const std::string& path, const Contents& contents) {
        zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
        for (const auto& [name, bytes] : contents) {
            zipOpenNewFileInZip(zip, name.c_str(), nullptr, nullptr, 0, nullptr, 0, nullptr,
                                Z_DEFLATED, 1);
            zipWriteInFileInZip(zip, bytes.data(), unsigned(bytes.size()));
            zipCloseFileInZip(zip);
        }
        ASSERT_EQ(zipClose(zip, nullptr), ZIP_OK);
    }
    std::string drop(const std::string& path, const std::vector<std::string>& more = {}) {
        Event event = {Event::Kind::drop, 0, 0, path};
        event.more = more;
        WindowProcedure(event);
        turn_until_free();
        return host->status_text(3);
    }
};

TEST_F(ZipFilesTest, OpenAsFolders) {
    make_zip("one.zip", {{"read.me", ""}, {"a/&\xE4\n.bas", "10 CLS\n"}});
    EXPECT_EQ(drop("one.zip"), "Autoloaded: one.zip/a/&\xE4\n.bas");
    make_zip("Two.ZIP", {{"d/w.dsk", disk()}, {"d/", ""}, {"a.bas", "10 CLS\n"}, {"i.zip", "PK"}});
    const std::string before = read_text("Two.ZIP");
    for (const bool opened : {false, true}) {
        host->forms().acts.emplace_back([opened](HeadlessForm& form) {
            EXPECT_EQ(form.text(3), "a.bas");
            form.choose(3, 1);
            EXPECT_EQ(form.text(3), "d/w.dsk");
            if (opened) form.press_enter();
        });
        drop("Two.ZIP");
        EXPECT_EQ(drive_files[0].path, opened ? "Two.ZIP/d/w.dsk" : "");
    }
    EXPECT_TRUE(wd1771.disks[0].write_protected);
    host->dialogs().answers = {0};
    host->dialogs().choices = {{{"copy", 0}}};
    command(40273);
    EXPECT_EQ(drive_files[0].path, "copy.dsk");
    EXPECT_FALSE(wd1771.disks[0].write_protected);
    EXPECT_EQ(read_text("copy.dsk"), disk());
    EXPECT_EQ(read_text("Two.ZIP"), before);
    EXPECT_FALSE(std::filesystem::exists("d") || std::filesystem::exists("a"));
    emu_close();
}

TEST_F(ZipFilesTest, HostileOnesAreRefused) {
    struct Case {
        Contents contents;
        size_t spoilt; ///< byte of the first file's central header whose lowest bit is turned
        const char* text;
    };
    for (const Case& c : std::vector<Case>{
             {{{"a.bas", "10"}}, 0, ": is damaged, or no zip file"},
             {{{"a.bas", "10"}}, 16, "/a.bas: is damaged"}, // the check sum
             {{{"a.bas", "10"}}, 8, "/a.bas: is encrypted"},
             {{{"a.bas", std::string(LARGEST_FILE + 1, 0)}}, 99, "/a.bas: is too large"},
             {Contents(5001, {"a.bas", ""}), 99, ": has too many files"},
             {{{"../a.bas", ""}, {"/a.bas", ""}, {"b/..\\a.bas", ""}, {"a.zip", ""}},
              99,
              ": has no file that can be used here"}}) {
        make_zip("bad.zip", c.contents);
        std::string bytes = read_text("bad.zip");
        if (c.spoilt < 99) bytes[bytes.find("PK\1\2") + c.spoilt] ^= 1;
        write_text("bad.zip", c.spoilt ? bytes : bytes.substr(0, 40));
        EXPECT_EQ(drop("bad.zip"), std::string("bad.zip") + c.text);
    }
    emu_close();
}

TEST_F(ZipFilesTest, FurtherFilesOfADropGoWhereThereIsRoom) {
    for (const char* name : {"a.dsk", "b.dsk", "c.dsk", "d.dsk"}) write_text(name, disk());
    write_text("list.bas", "10 CLS\n");
    for (const char* name : {"t.cas", "u.cas"}) write_text(name, std::string("\x66G\0\0", 4));
    EXPECT_EQ(drop("list.bas", {"a.dsk", "t.cas", "b.dsk", "u.cas", "c.dsk", "d.dsk", "list.bas"}),
              "Left out: u.cas, d.dsk, list.bas");
    const std::string drives[] = {"", "a.dsk", "b.dsk", "c.dsk"};
    for (size_t n = 0; n < 4; ++n) EXPECT_EQ(drive_files[n].path, drives[n]);
    EXPECT_EQ(tape_get_cas_name(), "t.cas");
    emu_close();
}

} // namespace
