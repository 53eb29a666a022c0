#include "host/joysticks.h"

#include "cgenie/input.h"
#include "cgenie/joystick.h"
#include "support/host_files.h"

namespace {

class HostJoysticks : public HostFilesTest {
protected:
    void plug(uint16_t x, uint16_t y, bool first = false, bool second = false) {
        HeadlessStick stick;
        stick.state = {x, y};
        stick.state.set(PAD_A, first);
        stick.state.set(PAD_B, second);
        host->joysticks().sticks.push_back(stick);
    }
    /// X, Y, first and second button.
    static std::array<uint32_t, 4> seen(int stick) {
        return {input_getJoyCords(stick, 0), input_getJoyCords(stick, 1),
                input_getJoyCords(stick, 2), input_getJoyCords(stick, 3)};
    }
};
using Seen = std::array<uint32_t, 4>;
constexpr Seen NOT_THERE = {32767, 32767, 0, 0};

TEST_F(HostJoysticks, ComeAndGoWhileRunning) {
    input_end_frame(); // which a test before may have left unfinished
    EXPECT_EQ(seen(0), NOT_THERE);
    plug(0, 65535, true); // bottom left
    plug(65535, 0, false, true);
    EXPECT_EQ(seen(0), (Seen{0, 0, 1, 0})) << "up is high";
    EXPECT_EQ(seen(1), (Seen{65535, 65535, 0, 1}));
    EXPECT_EQ(input_getJoyCords(0, 4), 0U);
    host->joysticks().sticks[0].plugged = false;
    EXPECT_EQ(seen(0), NOT_THERE);
    EXPECT_EQ(seen(1), (Seen{65535, 65535, 0, 1}));
    host->joysticks().sticks[1].readable = false;
    EXPECT_EQ(seen(1), NOT_THERE);
}

TEST_F(HostJoysticks, StartUpSaysWhatItFinds) {
    const struct {
        std::vector<const char*> plugged; // by name; none: the device is there, unplugged
        int refused;                      // number of the one that cannot be captured
        const char* text;
    } cases[] = {
        {{},
         -1,
         "No joystick driver found.\nNumber of joysticks found: 0\nNo joysticks are plugged.\n"},
        {{nullptr, "Pad"}, -1, "Number of joysticks found: 1\nController 1: Pad\n"},
        {{"Stick", "Pad", "Third"},
         0,
         "Number of joysticks found: 2\nController 0: Stick\nController 1: Pad\n"
         "Couldn't capture joystick #1.\n"},
    };
    for (const auto& c : cases) {
        std::vector<HeadlessStick>& sticks = host->joysticks().sticks;
        sticks.assign(c.plugged.size(), {});
        for (int i = 0; i < int(sticks.size()); ++i) {
            sticks[i].plugged = c.plugged[i] != nullptr;
            if (c.plugged[i]) sticks[i].name = c.plugged[i];
            sticks[i].capture_fails = i == c.refused;
        }
        testing::internal::CaptureStderr();
        initJoyInput();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.text);
        for (int i = 0; i < int(sticks.size()); ++i) {
            EXPECT_EQ(sticks[i].captured, c.plugged[i] && i < 2 && i != c.refused) << i;
        }
    }
}
} // namespace
