#include "time/state_file.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "files/file_identity.h"
#include "files/whole_file.h"
#include "media/disk_image.h"
#include "platform/headless/headless.h"
#include "time/deflate.h"
#include "wall/machine_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace {

using Bytes = std::vector<uint8_t>;

/// A machine in the middle of a program, with a disk, a cassette and text to type.
class StateFile : public testing::Test {
protected:
    StateFile() : host_(HeadlessOptions{}) {
        install_platform(host_);
        testing::internal::CaptureStderr();
        machine_init();
        machine_apply(event_kind::disk_in, 0, 0, shared_bytes(Bytes(102400, 0xE5)));
        machine_apply(event_kind::tape_in, 0, 0, text("tape"));
        machine_apply(event_kind::typing_trap);
        machine_apply(event_kind::type_text, 0, 0, text("\rFORI=1TO9999:PRINTI;:NEXT\r"));
        for (int frame = 0; frame < 100; ++frame) machine_run();
        machine_save(state_);
    }
    ~StateFile() override {
        machine_init();
        testing::internal::GetCapturedStderr();
    }
    static shared_bytes text(const std::string& characters) {
        return shared_bytes(Bytes(characters.begin(), characters.end()));
    }
    /// Why the file is refused; what is taken is in `loaded_`.
    std::string refusal(std::span<const uint8_t> file, const state_sources& sources = {}) {
        return state_file_unpack(file, loaded_, about_, sources);
    }

    static Bytes with_right_sum(Bytes file) {
        constexpr size_t SUM_AT = 24;
        const std::span bytes(file);
        const uint32_t sum = crc32_of(bytes.subspan(SUM_AT + 4), crc32_of(bytes.first(SUM_AT)));
        for (size_t n = 0; n < 4; ++n) file[SUM_AT + n] = uint8_t(sum >> 8 * n);
        return file;
    }

    HeadlessPlatform host_;
    machine_state state_, loaded_;
    state_description about_;
};

TEST_F(StateFile, HoldsTheMachineAndWhatItIsAbout) {
    const state_description about = {.version = "1.2",
                                     .time = -5,
                                     .running = "star",
                                     .picture = state_file_picture(),
                                     .media = {},
                                     .attachments = text("paths")};
    const Bytes file = state_file_pack(state_, about, false);
    machine_state now;
    machine_save(now);
    EXPECT_EQ(machine_difference(state_, now), "") << "the picture leaves no trace";
    ASSERT_EQ(refusal(file), "");
    EXPECT_EQ(machine_difference(state_, loaded_), "");
    state_description head;
    ASSERT_EQ(state_file_describe(file, head), "");
    EXPECT_EQ(head.version + head.running, "1.2star");
    EXPECT_EQ(head.time, -5);
    EXPECT_EQ(head.picture.rgb, about.picture.rgb);
    EXPECT_EQ(head.attachments, about.attachments);
    EXPECT_EQ(state_file_pack(state_, about, false), file);
}

/// Every byte flipped, also behind the check sum's back, and every length.
TEST_F(StateFile, DamagedFilesAreRefusedAndChangeNothing) {
    const Bytes file = state_file_pack(state_, {}, true);
    for (size_t n = 0; n < file.size(); ++n) {
        Bytes damaged = file;
        damaged[n] ^= uint8_t(1 << n % 8);
        ASSERT_NE(refusal(damaged), "") << n;
        ASSERT_NE(refusal(std::span(file).first(n)), "") << n;
        if (!refusal(with_right_sum(damaged)).empty()) continue;
        ASSERT_EQ(machine_difference(state_, loaded_), "") << "deflated in another way: " << n;
        loaded_ = {};
    }
    Bytes longer = file;
    longer.push_back(0);
    EXPECT_EQ(refusal(longer), "it is damaged");
    EXPECT_TRUE(loaded_.records.empty());
    EXPECT_EQ(refusal(file), "");
}

TEST_F(StateFile, UnchangedMediaStayInTheirFiles) {
    state_description about;
    about.media[0] = {.path = "a.dsk", .unchanged = true};
    const Bytes whole = state_file_pack(state_, about, true);
    EXPECT_EQ(refusal(whole), "");
    const Bytes file = state_file_pack(state_, about, false);
    EXPECT_LT(file.size(), whole.size());
    std::string missing;
    const auto found = [](Bytes bytes) {
        return [bytes](size_t, const medium_origin&) { return state_sources::Files{{}, bytes}; };
    };
    EXPECT_EQ(refusal(file, {.medium = found(Bytes(102400, 1)), .missing = &missing}),
              "it needs a.dsk as it was then");
    EXPECT_EQ(missing, "a.dsk");
    EXPECT_EQ(refusal(file, {.medium = found(Bytes(102400, 0xE5))}), "");
    EXPECT_EQ(machine_difference(state_, loaded_), "");
    EXPECT_TRUE(about_.media[0].unchanged);
}

/// Half a ROM of the user's that no compression makes smaller, over the built-in one, with traps.
TEST_F(StateFile, RomImagesOfTheUserAreNeverInIt) {
    static const Bytes rom = [] {
        Bytes bytes(8192);
        uint32_t random = 1;
        for (uint8_t& byte : bytes) byte = uint8_t((random = random * 1103515245 + 12345) >> 16);
        return bytes;
    }();
    const size_t before = state_file_pack(state_, {}, true).size();
    machine_host.read_rom = [](rom_file, uint8_t* to, size_t size) {
        return int(std::copy_n(rom.begin(), std::min(size, rom.size()), to) - to);
    };
    machine_cfg[CUSTOM_CONFIGURATION].basic_rom = machine_cfg[CUSTOM_CONFIGURATION].character_rom =
        3;
    machine_cfg[CUSTOM_CONFIGURATION].expansion_rom = 2;
    machine_apply(event_kind::configure, CUSTOM_CONFIGURATION, 1);
    machine_apply(event_kind::tape_traps);
    machine_host = machine_without_host();
    machine_save(state_);
    const Bytes file = state_file_pack(state_, {}, true);
    EXPECT_LT(file.size() + 5000, before) << "the upper half of the BASIC ROM is the program's";
    EXPECT_EQ(refusal(file), "") << "the machine has them at this moment";
    machine_apply(event_kind::configure, 0, 1);
    std::string missing;
    EXPECT_EQ(refusal(file, {.missing = &missing}),
              "it needs the BASIC ROM that it was made with, which is not there");
    EXPECT_EQ(missing, "BASIC ROM");
    EXPECT_EQ(refusal(file, {.rom =
                                 [](const rom_piece&) {
                                     return state_sources::Files{{1}, rom};
                                 }}),
              "");
    EXPECT_EQ(machine_difference(state_, loaded_), "");
    firmware_use_image(FirmwareImage::disk, Bytes(rom));
    machine_apply(event_kind::restart_with_disk_rom);
    machine_save(state_);
    const Bytes with_disk_rom = state_file_pack(state_, {}, true);
    machine_init();
    EXPECT_EQ(refusal(with_disk_rom), "") << "it is among the firmware";
    firmware_forget_user_images();
    EXPECT_EQ(refusal(with_disk_rom),
              "it needs the expansion ROM that it was made with, which is not there");
}

/// A chunk of before is brought up to date, one of a later version is refused.
TEST_F(StateFile, OlderChunksAreConvertedAndNewerOnesRefused) {
    const Bytes file = state_file_pack(state_, {}, true);
    const auto with_version = [&](uint8_t version) {
        Bytes other = file;
        constexpr std::string_view NAME = "palette_state";
        const auto name = std::search(other.begin(), other.end(), NAME.begin(), NAME.end());
        name[NAME.size()] = version;
        return with_right_sum(other);
    };
    EXPECT_EQ(refusal(with_version(2)), "it was made by a newer version of the program");
    EXPECT_EQ(refusal(with_version(0)), "it is damaged") << "there never was such a version";
    const state_converter converter = {"palette_state", 0, [](Bytes contents) {
                                           contents[0] ^= 1;
                                           return contents;
                                       }};
    EXPECT_EQ(state_file_unpack(with_version(0), loaded_, about_, {}, {&converter, 1}), "");
    EXPECT_EQ(machine_difference(state_, loaded_), "palette_state.index: 00000000 and 00000001");
}

/// One file for every version that there has been, made by the program of that time.
TEST_F(StateFile, StatesOfEveryVersionGoOn) {
    const auto file = read_whole_file(TEST_SOURCE_DIR "/golden/state-1.tvs");
    ASSERT_TRUE(file);
    ASSERT_EQ(refusal(*file), "");
    EXPECT_EQ(about_.running, "count");
    machine_load(loaded_);
    for (int frame = 0; frame < 50; ++frame) machine_run();
    // The program counts in the top left corner.
    EXPECT_EQ(std::string(memory + 0x4400, memory + 0x4406), " 611  ");
}

} // namespace
