#include "files/unfinished_writes.h"
#include "files/whole_file.h"

#include "support/full_disk.h"
#include "support/posix.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <sys/xattr.h>

namespace {

namespace fs = std::filesystem;

class WholeFile : public testing::Test {
protected:
    void SetUp() override { setenv("XDG_DATA_HOME", (own / "share").c_str(), 1); }
    static struct stat status(const fs::path& path) {
        struct stat found = {};
        EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
        return found;
    }
    size_t files() const { return size_t(std::distance(fs::directory_iterator(folder), {})); }

    const Folder own;
    const fs::path folder = own / "folder";
    const fs::path file = folder / "file";
    const fs::path notes = own / "share/tarvelin/unfinished";
};

TEST_F(WholeFile, NamesLinksAndPermissionsStay) {
    const std::string longest(255, 'n');
    write_text(folder / longest, "old");
    fs::create_symlink("../folder/" + longest, folder / "link");
    fs::create_symlink("missing", folder / "dangling");
    fs::create_symlink("circle", folder / "circle");
    write_text(file, "much longer than the new");
    chmod(file.c_str(), 0640);
    const bool privileged = chown(file.c_str(), 1, 2) == 0;
    const bool attributes = setxattr(file.c_str(), "user.note", "kept", 4, 0) == 0;
    fs::create_hard_link(file, folder / "other");
    const auto before = status(file);
    for (const char* name : {"link", "dangling", "file"})
        EXPECT_TRUE(replace_whole_file(folder / name, "new")) << name;
    EXPECT_TRUE(fs::is_symlink(folder / "link") && fs::is_symlink(folder / "dangling"));
    for (const std::string& name : {longest, std::string("missing"), std::string("other")})
        EXPECT_EQ(read_text(folder / name), "new") << name;
    EXPECT_EQ(status(file).st_ino, before.st_ino) << "in place";

    fs::remove(folder / "other");
    EXPECT_TRUE(replace_whole_file(file, "newer"));
    EXPECT_NE(status(file).st_ino, before.st_ino) << "at one stroke";
    EXPECT_EQ(status(file).st_mode, before.st_mode);
    EXPECT_EQ(status(file).st_uid, privileged ? 1 : before.st_uid);
    EXPECT_EQ(status(file).st_gid, privileged ? 2 : before.st_gid);
    EXPECT_EQ(getxattr(file.c_str(), "user.note", nullptr, 0), attributes ? 4 : -1);
    const std::pair<fs::path, int> refused[] = {{folder, EISDIR},
                                                {folder / "circle", ELOOP},
                                                {folder / "no/file", ENOENT},
                                                {folder / (longest + "n"), ENAMETOOLONG},
                                                {"/dev/full", ENOSPC}};
    for (const auto& [path, reason] : refused) {
        EXPECT_FALSE(replace_whole_file(path, "new"));
        EXPECT_EQ(errno, reason) << path;
    }
    EXPECT_EQ(files(), 6U);
    EXPECT_FALSE(fs::exists(own / "share")) << "nothing stays";
}

TEST_F(WholeFile, AFullDiskLeavesTheOldContents) {
    write_text(file, "old");
    for (const bool linked : {false, true}) {
        if (linked) fs::create_hard_link(file, folder / "other");
        const FullDisk full(100);
        EXPECT_FALSE(replace_whole_file(file, std::string(200, 'x')));
        EXPECT_EQ(errno, EFBIG);
        EXPECT_EQ(read_text(file), "old");
    }
    EXPECT_EQ(files(), 2U);
    EXPECT_FALSE(fs::exists(own / "share"));
}

TEST_F(WholeFile, TheNextStartFindsWhatAKilledProgramLeft) {
    const auto note = [&](const std::string& name, char kind, const fs::path& temporary) {
        write_text(notes / name, kind + temporary.string() + '\0' + file.string());
    };
    const fs::path rescue = own / "share/tarvelin/rescue";
    const fs::path temporary = folder / ".tarvelin-a";
    write_text(temporary, "ne");
    note("a", 'T', temporary);
    note("b", 'T', file); // no name of a temporary
    write_text(notes / "c", "");
    write_text(file, "new or o");
    write_text(rescue / "file-a", "new");
    note("d", 'C', rescue / "file-a");
    write_text(rescue / "file-b", "new or o"); // finished, but for the note
    note("e", 'C', rescue / "file-b");
    const WriteNote living(temporary, file);
    remove_unfinished_files();
    EXPECT_EQ(files(), 1U);
    const auto writes = interrupted_writes();
    ASSERT_EQ(writes.size(), 1U);
    EXPECT_EQ(writes[0].target, file);
    EXPECT_TRUE(finish_write(writes[0]));
    EXPECT_EQ(read_text(file), "new");
    EXPECT_FALSE(fs::exists(rescue));
    EXPECT_EQ(std::distance(fs::directory_iterator(notes), {}), 1) << "the one in use";
}

} // namespace
