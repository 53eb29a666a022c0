#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "host/display.h"
#include "host/shell.h"
#include "platform/headless/headless.h"
#include "wall/machine_host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {
bool counting = false;
size_t allocations = 0;
} // namespace

// Every allocation of the program passes here. The array and sized forms lead to these. Not
// inlined, so that the compiler keeps seeing pairs of new and delete.
[[gnu::noinline]] void* operator new(size_t size) {
    allocations += counting;
    if (void* const block = std::malloc(size ? size : 1)) return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept {
    allocations += counting;
    return std::malloc(size ? size : 1); // the sanitizer's own would not go with this delete
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, size_t) noexcept { std::free(block); }

TEST(NoAllocation, FramesAreEmulatedDrawnAndShownWithoutAny) {
    HeadlessPlatform host{HeadlessOptions{}};
    install_platform(host);
    const struct {
        const char* program;
        bool giant;
        uint32_t blur;
    } cases[] = {{EXAMPLES_DIR "/colours.cmd", false, 0},
                 {EXAMPLES_DIR "/colours.cmd", true, 66},
                 {EXAMPLES_DIR "/bounce.cmd", true, 0}};
    for (const auto& c : cases) {
        emu_init({.line = read_command_line({c.program})});
        g_CompositeBlur = c.blur;
        ASSERT_EQ(recreate_bitmap(c.giant, 8), 1);
        for (const bool beam : {false, true}) {
            SCOPED_TRACE(std::string(c.program) + (beam ? ", beam" : ""));
            g_bCycleBasedEngine = beam;
            do_some_frames(3);
            const int shown = host.frames_presented();
            allocations = 0;
            counting = true;
            do_some_frames(50);
            counting = false;
            EXPECT_EQ(allocations, 0U);
            EXPECT_GE(host.frames_presented() - shown, 50);
        }
    }
    g_bCycleBasedEngine = false;
    g_CompositeBlur = 0;
    emu_close();

    allocations = 0;
    counting = true;
    int* volatile number = new int(1);
    delete number;
    counting = false;
    EXPECT_EQ(allocations, 1U) << "the counter works";
}
