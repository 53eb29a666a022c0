#include "sound/sound_core.h"

#include "sound/beeper.h"
#include "sound/output/wav_capture.h"
#include "sound/scripted_driver.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {
using Fragment = std::array<int16_t, FRAGMENT_SAMPLES>;

/// A source that counts its own samples.
uint16_t sample_count = 0;
bool counting = false;
uint32_t largest_block = 0;
std::string reset_order;
sound_source counter = {"counter", nullptr,
                        [](uint16_t* buffer, uint32_t count) {
                            largest_block = std::max(largest_block, count);
                            for (uint32_t i = 0; i < count; ++i) {
                                buffer[i] = counting ? sample_count++ : uint16_t(0);
                            }
                        },
                        [] { reset_order += "counter "; }};

class SoundCore : public testing::Test {
protected:
    void SetUp() override {
        sound_add_source(&counter);
        beeper_init();
        start_scripted_core();
        sample_count = 0;
        counting = true;
        largest_block = 0;
    }
    void TearDown() override {
        counting = false;
        sound_resume();
        sound_close_wav();
        beeper_reset();
        sound_null_driver_init();
    }
    static void hold_lead(int32_t bytes) {
        scripted.position = [=] {
            return int32_t((int32_t(scripted.next_offset) - bytes + 192000) % 96000);
        };
    }
    /// Fragments written by each of a number of steps of one fragment's time.
    static std::vector<size_t> written_by_steps(size_t steps) {
        std::vector<size_t> written;
        for (size_t step = 0; step < steps; ++step) {
            const size_t before = scripted.fragments.size();
            advance(FRAGMENT_SAMPLES);
            written.push_back(scripted.fragments.size() - before);
        }
        return written;
    }
};

TEST_F(SoundCore, FragmentsAreGapFreeWhateverTheUpdates) {
    sound_remove_filter(); // raw: what the sources gave
    const int64_t steps[] = {1, 0, 958, 1, 959, 2, 959, 33, 400, 527, 700};
    for (const int64_t step : steps) advance(step);
    ASSERT_EQ(scripted.fragments.size(), 4U); // 4540 samples
    for (size_t i = 0; i < 3840; ++i) ASSERT_EQ(scripted.fragments[i / 960][i % 960], int16_t(i));
    EXPECT_EQ(sample_count, 4540);
    advance(0);
    sound_update(cycle_of_sample(sample_at(z80_state.t_count) + 1) - 1);
    EXPECT_EQ(sample_count, 4540) << "the cycle before the next sample";
}

TEST_F(SoundCore, LongUpdateLosesWholeFragments) {
    sound_remove_filter();
    scripted.position = [] { return -1; };
    advance(100);
    advance(2500);
    ASSERT_EQ(scripted.fragments.size(), 1U);
    EXPECT_EQ(sample_count, 960 + 680);
    advance(279);
    EXPECT_EQ(scripted.fragments.size(), 1U);
    advance(1);
    ASSERT_EQ(scripted.fragments.size(), 2U);
    EXPECT_EQ(scripted.fragments[1][679], 960 + 679);
    // An exact multiple leaves an empty fragment; a day's worth is one fragment as well.
    advance(2880);
    EXPECT_EQ(sample_count, 3 * 960);
    advance(48000LL * 86400 + 5);
    EXPECT_EQ(sample_count, 4 * 960 + 5);
    EXPECT_LE(largest_block, 960U);
}

// The history holds 14 times 5 before. A poll's answer 0 takes effect on the update after it.
TEST_F(SoundCore, LeadIsHeldBetweenFourAndSixFragments) {
    struct {
        const char* name;
        int32_t lead; ///< bytes
        std::vector<size_t> written;
    } const cases[] = {
        {"on time", 5 * 1920, std::vector<size_t>(20, 1)},
        {"6.9 counts as 6", 6 * 1920 + 1918, std::vector<size_t>(20, 1)},
        {"4", 4 * 1920, std::vector<size_t>(20, 1)},
        // The sum of 14 reaches 98 with the 14th; then 7 + 13 x 6.
        {"7", 7 * 1920, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 1, 1}},
        // 85 / 14 = 6, 100 / 14 = 7; every poll after it adds more than 14.
        {"20", 20 * 1920, {1, 1, 0, 0, 0, 0, 0}},
        // 54 / 14 = 3 with the 8th, then 68 - 5 x 3 = 53.
        {"3", 3 * 1920, {1, 1, 1, 1, 1, 1, 1, 2, 1, 1, 1, 1, 2}},
        {"0", 0, {1, 1, 2, 1, 1, 2}}, // 65, 60, 55; 69 - 6 - 6 - 6
        {"-0.99 counts as 0", -1918, {1, 1, 2, 1, 1, 2}},
        {"-1", -1920, {1, 1, 2, 1, 2}},                       // 64, 58, 52; 66 - 7 = 59, 52
        {"half the ring less a sample", 47998, {1, 1, 0, 0}}, // 24: 89 / 14 = 6, 108 / 14 = 7
        {"half the ring", 48000, {2, 2}},                     // -25: 40 / 14
    };
    for (const auto& c : cases) {
        start_scripted_core();
        hold_lead(c.lead);
        EXPECT_EQ(written_by_steps(c.written.size()), c.written) << c.name;
    }
}

TEST_F(SoundCore, SecondFragmentFollowsTheFirstAndEndsTheUpdate) {
    sound_remove_filter();
    hold_lead(48000);
    advance(1000);
    ASSERT_EQ(scripted.fragments.size(), 2U);
    EXPECT_EQ(scripted.fragments[1][959], 1919);
    EXPECT_EQ(sample_count, 1920) << "the other 40 are lost";
}

// The samples count up, so that every gap shows. Where pictures come faster than fragments, one of
// them finds none.
TEST_F(SoundCore, RecordingsAreContinuousAndTheRingTakesWhatItCan) {
    struct {
        const char* name;
        int64_t frame, updates; ///< samples, in so many steps
        int32_t lead;
        bool wav, film;
        size_t gaps; ///< in the film, of 400 pictures; each sample of silence is one
    } const cases[] = {{"film", 966, 2, 5 * 1920, false, true, 0},
                       {"film of speech", 966, 161, 20 * 1920, false, true, 0},
                       {"film at 60 Hz", 804, 2, 0, false, true, 960},
                       {"WAV, device far behind", 966, 2, 20 * 1920, true, false, 0},
                       {"WAV, device far ahead", 966, 2, 0, true, false, 0},
                       {"both", 966, 2, 5 * 1920, true, true, 1}};
    const Folder folder;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        start_scripted_core();
        sound_remove_filter();
        hold_lead(c.lead);
        sample_count = 0;
        if (c.wav) sound_create_wav(folder / "a.wav");
        if (c.film) sound_start_film();
        std::vector<uint16_t> film;
        for (int picture = 0; picture < 400; ++picture) {
            for (int64_t n = 0; n < c.updates; ++n) advance(c.frame / c.updates);
            if (!c.film) continue;
            const uint16_t* chunk = sound_take_film_fragment();
            film.insert(film.end(), chunk, chunk + FRAGMENT_SAMPLES);
        }
        sound_end_film();
        sound_close_wav();
        size_t gaps = 0;
        for (size_t n = 1; n < film.size(); ++n) gaps += film[n] != uint16_t(film[n - 1] + 1);
        EXPECT_EQ(gaps, c.gaps);
        EXPECT_EQ(scripted.fragments.size() < 300, c.lead > 6 * 1920) << "the ring is full";
        EXPECT_EQ(scripted.fragments.size() > 500, c.lead == 0 && !c.wav) << "it runs empty";
        if (!c.wav) continue;
        const std::vector<uint8_t> wav = read_file(folder / "a.wav");
        ASSERT_EQ((wav.size() - 44) / 1920, size_t(400 * 966 / 960));
        for (size_t n = 44; n < wav.size(); n += 2) {
            ASSERT_EQ(wav[n] | wav[n + 1] << 8, (n - 44) / 2 % 65536);
        }
    }
}

TEST_F(SoundCore, PauseEndsAfterTheFragmentInProgress) {
    advance(100);
    sound_pause();
    advance(500);
    EXPECT_EQ(written_by_steps(5), (std::vector<size_t>{1, 0, 0, 0, 0}));
    sound_resume();
    advance(10); // the poll that ends it
    EXPECT_EQ(written_by_steps(3), (std::vector<size_t>{1, 1, 1}));
    EXPECT_EQ(scripted.calls, "pause resume ");
}

TEST_F(SoundCore, SourcesAreMixedModulo65536AndTheOffsetIsRemoved) {
    counting = false;
    beeper_set_level(1);
    EXPECT_EQ(beeper_level(), 4096);
    advance(960);
    advance(960);
    for (int n = 1; n <= 1920; ++n) {
        const double rest = 4096 * std::exp(-6.283185307179586 * 50 * n / 48000);
        ASSERT_NEAR(scripted.fragments[(n - 1) / 960][(n - 1) % 960], rest, 0.51) << n;
    }
    sound_remove_filter();
    counting = true;
    sample_count = 65000;
    advance(960);
    EXPECT_EQ(scripted.fragments[2][0], int16_t(65000 + 4096));
    EXPECT_EQ(scripted.fragments[2][959], int16_t(65959 + 4096));
    EXPECT_EQ(uint16_t(sound_get_buffer_ptr()[959]), uint16_t(65959 + 4096));
}

TEST_F(SoundCore, DriversAndResets) {
    reset_order.clear();
    beeper_set_level(1);
    sound_reset();
    EXPECT_EQ(scripted.calls, "reset ");
    EXPECT_EQ(reset_order, "counter ");
    EXPECT_EQ(beeper_level(), 0);
    sound_add_source(&counter); // again: still once in the list
    sound_reset();
    EXPECT_EQ(reset_order, "counter counter ");
    sound_null_driver_init();
    EXPECT_EQ(scripted.calls, "reset reset close ");
    sound_init();
    sample_count = 0;
    for (int n = 0; n < 50; ++n) advance(960);
    EXPECT_TRUE(scripted.fragments.empty());
    EXPECT_EQ(sample_count, 48000) << "the null driver lets the sources run";
}

} // namespace
