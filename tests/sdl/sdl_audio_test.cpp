// Playback through SDL's own threads and a device that is a file.

#include "platform/sdl/sdl_audio.h"

#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

constexpr int RATE = 48000;
constexpr uint32_t RING = 96000;
constexpr uint32_t FRAGMENT = 1920;

bool start(SdlAudio& audio) {
    return audio.library_available() && audio.create_device() && audio.set_cooperative() &&
           audio.create_primary() && audio.set_format(RATE, 512) && audio.create_ring(RING, RATE);
}

/// Something that keeps every core busy.
class Load {
public:
    Load() {
        for (unsigned n = 0; n < 2 * std::thread::hardware_concurrency(); ++n) {
            threads_.emplace_back([this] {
                while (!end_) ++work_;
            });
        }
    }
    ~Load() {
        end_ = true;
        for (std::thread& thread : threads_) thread.join();
    }

private:
    std::atomic<bool> end_ = false;
    std::atomic<unsigned> work_ = 0;
    std::vector<std::thread> threads_;
};

constexpr uint32_t FRAGMENTS = 150; // three seconds: three times round the ring
constexpr uint32_t LEAD = 40;

/// Plays the numbers from 1 up to a file. 0 if the host kept this thread waiting for longer than
/// the lead lasts, when no ring is without a gap.
int play_numbers() {
    const Load load;
    SdlAudio audio;
    EXPECT_TRUE(start(audio));
    uint16_t value = 0;
    uint32_t offset = 0;
    const auto write = [&] {
        std::vector<uint16_t> samples(FRAGMENT / 2);
        std::ranges::generate(samples, [&] { return ++value; });
        std::span<uint8_t> first, second;
        ASSERT_TRUE(audio.lock(offset, FRAGMENT, first, second));
        ASSERT_TRUE(second.empty());
        std::memcpy(first.data(), samples.data(), FRAGMENT);
        ASSERT_TRUE(audio.unlock());
        offset = (offset + FRAGMENT) % RING;
    };
    for (uint32_t n = 0; n < LEAD; ++n) write();
    EXPECT_EQ(audio.position(), 0);
    EXPECT_TRUE(audio.play());
    const auto lead = [&] {
        const uint32_t distance = (offset + RING - uint32_t(audio.position())) % RING;
        return distance > LEAD * FRAGMENT ? int32_t(distance) - int32_t(RING) : int32_t(distance);
    };
    // Of the lead a device may take a buffer more than it plays, and be that much faster.
    constexpr auto PATIENCE = std::chrono::milliseconds(LEAD * 20 * 3 / 4);
    auto full = std::chrono::steady_clock::now();
    for (uint32_t n = LEAD; n < FRAGMENTS; ++n) {
        while (lead() > int32_t((LEAD - 1) * FRAGMENT)) {
            full = std::chrono::steady_clock::now();
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        write();
        if (std::chrono::steady_clock::now() - full > PATIENCE) return 0;
    }
    while (lead() > 0) std::this_thread::sleep_for(std::chrono::milliseconds(2));
    audio.stop();
    return 1;
}

TEST(SdlAudioTest, PlaybackUnderLoadHasNoGap) {
    const Folder folder;
    const std::string path = folder / "playback.raw";
    setenv("SDL_AUDIODRIVER", "disk", 1);
    setenv("SDL_DISKAUDIOFILE", path.c_str(), 1);
    int attempts = 10;
    while (!play_numbers()) ASSERT_GT(--attempts, 0) << "the host is too busy for any sound";
    const std::vector<uint8_t> bytes = read_file(path);
    std::vector<uint16_t> heard(bytes.size() / 2);
    std::memcpy(heard.data(), bytes.data(), heard.size() * 2);
    auto at = std::ranges::find(heard, 1);
    for (uint32_t n = 1; n <= FRAGMENTS * FRAGMENT / 2; ++n, ++at) {
        ASSERT_NE(at, heard.end()) << n;
        ASSERT_EQ(*at, uint16_t(n)) << n;
    }
    EXPECT_EQ(std::find_if(at, heard.end(), [](uint16_t sample) { return sample != 0; }),
              heard.end())
        << "silence after the last fragment";
}

TEST(SdlAudioTest, StandsStillWhenStoppedAndComesUpAgain) {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    SdlAudio audio;
    EXPECT_EQ(audio.position(), -1);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(start(audio));
        ASSERT_TRUE(audio.play());
        for (int n = 0; n < 500 && audio.position() == 0; ++n) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        audio.stop();
        const int32_t stopped = audio.position();
        EXPECT_GT(stopped, 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(audio.position(), stopped);
        audio.restore();
        EXPECT_EQ(audio.position(), stopped) << "nothing was lost";

        std::span<uint8_t> first, second;
        ASSERT_TRUE(audio.lock(95040, FRAGMENT, first, second));
        EXPECT_EQ(first.size(), 960U);
        EXPECT_EQ(second.size(), 960U);
        EXPECT_EQ(second.data() + 95040, first.data());
        EXPECT_TRUE(audio.unlock());
        audio.release_ring();
        EXPECT_FALSE(audio.has_ring());
        audio.release_device();
        EXPECT_FALSE(audio.play());
    }
}

TEST(SdlAudioTest, WithoutADeviceTheStepFails) {
    setenv("SDL_AUDIODRIVER", "no such driver", 1);
    SdlAudio audio;
    EXPECT_TRUE(audio.library_available());
    EXPECT_FALSE(audio.create_device());
    EXPECT_FALSE(audio.set_format(RATE, 512));
    EXPECT_FALSE(audio.create_ring(RING, RATE));
    EXPECT_EQ(audio.position(), -1);
}

} // namespace
