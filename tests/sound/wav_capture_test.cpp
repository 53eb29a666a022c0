// Recorded files, read back by a reader of RIFF that knows nothing of the writer.

#include "sound/output/wav_capture.h"

#include "support/full_disk.h"
#include "support/riff.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t FRAGMENT = 1920;

/// Empty where the file is no 16-bit mono recording at 48000 Hz, or its lengths do not fit it.
std::vector<uint8_t> samples_of(const std::string& path) {
    const Riff riff(read_file(path));
    const auto format = riff.all("WAVE/fmt "), data = riff.all("WAVE/data");
    if (format.size() != 1 || data.size() != 1) return {};
    const size_t at = format[0].start;
    const bool known = riff.number(at) == 0x10001 && riff.number(at + 4) == 48000 &&
                       riff.number(at + 8) == 96000 && riff.number(at + 12) == 0x100002;
    const auto samples = riff.data.begin() + ptrdiff_t(data[0].start);
    return known ? std::vector(samples, samples + ptrdiff_t(data[0].size)) : std::vector<uint8_t>();
}

class WavCaptureTest : public testing::Test {
protected:
    void TearDown() override { sound_close_wav(); }
    static int dump(uint8_t value) {
        return sound_dump_wav_data(std::vector<uint8_t>(FRAGMENT, value).data(), FRAGMENT);
    }

    const Folder folder;
    const std::string path = folder / "sound.wav";
};

TEST_F(WavCaptureTest, CountGoesOnFromFileToFile) {
    int64_t before = -1;
    EXPECT_EQ(sound_is_saving(&before), 0);
    EXPECT_EQ(before, -1);
    ASSERT_EQ(sound_create_wav(path), 1);
    EXPECT_EQ(sound_is_saving(&before), 1);
    for (int file = 0; file < 2; ++file, sound_create_wav(path)) dump(1);
    int64_t after = 0;
    EXPECT_EQ(sound_is_saving(&after), 1);
    EXPECT_EQ(after - before, 2 * 1920);
}

TEST_F(WavCaptureTest, AFileThatWasNeverClosedCanBePlayed) {
    ASSERT_EQ(sound_create_wav(path), 1);
    for (int n = 0; n < 100; ++n) dump(3);
    EXPECT_EQ(samples_of(path), std::vector<uint8_t>(100 * FRAGMENT, 3));
}

TEST_F(WavCaptureTest, FullDiskDropsWholeFragments) {
    EXPECT_EQ(sound_create_wav("/dev/full"), 0);
    EXPECT_EQ(sound_create_wav("no/such/folder.wav"), 0);
    EXPECT_EQ(sound_is_saving(nullptr), 0);

    ASSERT_EQ(sound_create_wav(path), 1);
    {
        const FullDisk full(44 + FRAGMENT + 777);
        EXPECT_EQ(dump(1), 1);
        for (int n = 0; n < 60; ++n) EXPECT_EQ(dump(2), 0);
        EXPECT_EQ(samples_of(path), std::vector<uint8_t>(FRAGMENT, 1)) << "while it is open";
    }
    EXPECT_EQ(dump(3), 1) << "there is room again";
    sound_close_wav();

    std::vector<uint8_t> expected(FRAGMENT, 1);
    expected.resize(2 * FRAGMENT, 3);
    EXPECT_EQ(samples_of(path), expected);
}

} // namespace
