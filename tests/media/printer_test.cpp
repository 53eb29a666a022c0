#include "media/files/printer_file.h"
#include "media/printer.h"

#include "cgenie/bus.h"
#include "platform/headless/headless.h"
#include "sound/ym2149.h"
#include "support/fake_host.h"
#include "support/full_disk.h"
#include "support/posix.h"
#include "support/test_files.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

class PrinterTest : public testing::Test {
protected:
    void SetUp() override {
        install_platform(host);
        ym2149_init(2216750);
        memory_init();
        printer_set_filename(data);
        printer_enabled = true;
        fake_host.reports.clear();
    }
    void TearDown() override {
        printer_close();
        printer_reset();
        printer_enabled = false;
    }

    static void send(const std::string& bytes) {
        z80_out(0xF8, 7);
        z80_out(0xF9, 0x40); // port A out, port B in
        z80_out(0xF8, 14);
        for (const char byte : bytes) z80_out(0xF9, uint8_t(byte));
    }
    static int status() {
        z80_out(0xF8, 15);
        return z80_in(0xF9) & 0xF0;
    }
    /// The file as it is now.
    std::string printed() const { return read_text(file); }

    const Folder folder;
    const std::string data = folder / "user/data/"; // made by the printer
    const std::string file = data + "printer.txt";
    static inline HeadlessPlatform host{HeadlessOptions{}};
};

TEST_F(PrinterTest, BytesBecomeText) {
    const std::string letters(200, 'x');
    const auto x = [&](size_t count) { return letters.substr(0, count); };
    const struct {
        std::string sent, text;
    } cases[] = {
        {"AB\rC", "AB\nC"},
        {std::string("\n\0\t\x1A\xFF", 5), std::string("\n\0\t\x1A\xFF", 5)},
        {"A\f\f\rB", "A\n\n\nB"},
        {x(64), x(64)},
        {x(70), x(64) + "\n" + x(6)},
        {x(64 + 65 + 1), x(64) + "\n" + x(65) + "\n" + x(1)}, // the wrapping byte is not counted
        {x(63) + "\r" + x(65), x(63) + "\n" + x(64) + "\n" + x(1)},
        {x(64) + "\r" + x(65), x(64) + "\n\n" + x(64) + "\n" + x(1)}, // wrapped, then ended
        {x(60) + "\n" + x(4), x(60) + "\n" + x(3) + "\n" + x(1)},     // a line feed is counted
    };
    for (const auto& c : cases) {
        std::filesystem::remove(file);
        printer_init();
        send(c.sent);
        EXPECT_EQ(printed(), c.text) << "case " << &c - cases << ", before the file is closed";
        EXPECT_EQ(status(), 0x30) << "ready, paper, not busy";
        printer_close();
        EXPECT_EQ(printed(), c.text) << "case " << &c - cases;
    }
}

TEST_F(PrinterTest, AppendsAndForgetsTheColumn) {
    printer_init();
    send(std::string(60, 'a'));
    printer_close();
    EXPECT_EQ(status(), 0x20) << "off: not ready, not busy";
    printer_init();
    send(std::string(60, 'b'));
    printer_init(); // open already: only the column starts again
    send(std::string(64, 'c'));
    EXPECT_EQ(printed(), std::string(60, 'a') + std::string(60, 'b') + std::string(64, 'c'));
}

TEST_F(PrinterTest, WithoutAFileItStaysBusy) {
    send("A");
    EXPECT_EQ(status(), 0xA0) << "busy, paper, not ready";
    EXPECT_EQ(status(), 0xA0);
    EXPECT_FALSE(std::filesystem::exists(file));
    printer_init();
    EXPECT_EQ(status(), 0x30);
    EXPECT_EQ(printed(), "") << "the byte is lost";
    printer_close();

    // What stands where the file should be, or in the place of its folder.
    const std::pair<const char*, std::function<void()>> obstacles[] = {
        {"", [this] { std::filesystem::create_directories(file); }},
        {"", [this] { ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); }},
        {"printer.txt/", [this] { write_text(file, "kept"); }}};
    for (const auto& [directory, put_there] : obstacles) {
        std::filesystem::remove(file);
        put_there();
        printer_set_filename(data + directory);
        fake_host.reports.clear();
        printer_init();
        EXPECT_EQ(status(), 0x20) << directory;
        send("A");
        EXPECT_EQ(status(), 0xA0) << directory;
        EXPECT_EQ(fake_host.reports.size(), 1U);
        printer_reset();
    }
    EXPECT_EQ(printed(), "kept");
}

TEST_F(PrinterTest, OnAFullDiskItIsNotReadyAndSaysSoOnce) {
    printer_init();
    send("AB");
    {
        const FullDisk full(2);
        send("C");
        EXPECT_EQ(status(), 0xA0);
        send("D");
    }
    EXPECT_EQ(fake_host.reports.size(), 1U);
    EXPECT_EQ(printed(), "AB");
    printer_init(); // as when it is switched off and on
    send("E");
    EXPECT_EQ(printed(), "ABE");
}

} // namespace
