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

TEST_F(StateFile, DamagedFilesAreRefusedAndChangeNothing) {
    const Bytes file = state_file_pack(state_, {}, true);
    Bytes damaged = file;
    for (uint8_t& byte : damaged) {
        byte ^= 1 << (&byte - damaged.data()) % 8;
        ASSERT_NE(refusal(damaged), "") << &byte - damaged.data();
        byte ^= 1 << (&byte - damaged.data()) % 8;
        const auto cut = std::span(file).first(size_t(&byte - damaged.data()));
        ASSERT_NE(refusal(cut), "") << cut.size();
    }
    damaged.push_back(0);
    EXPECT_EQ(refusal(damaged), "it is damaged");
    EXPECT_TRUE(loaded_.records.empty() && about_.version.empty());
    EXPECT_EQ(refusal(file), "");
}

} // namespace
