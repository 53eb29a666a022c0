/// Any program in any memory for one frame, in both engines. The processor must not notice which
/// one draws, and the beam must draw the same whether it follows it by the frame or by the
/// instruction.

#include "core/machine.h"
#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "cgenie/video_beam.h"
#include "core/frame_driver.h"
#include "media/printer.h"
#include "media/wd1771.h"
#include "support/fake_host.h"
#include "support/machine.h"
#include "z80/z80.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

enum : uint8_t {
    CONFIGURATION = 0x03, ///< 3 is the custom one, here with 16 KB
    ANY_ROM = 0x04,
    WITH_DISK = 0x08,
    STEPPED = 0x10,
    WITH_PRINTER = 0x20,
    STANDARD_PICTURE = 0x80
};
constexpr size_t DISK_SIZE = 89600;
constexpr uint32_t CRTC_REGISTERS = 16;

void insert_disk(std::span<const uint8_t> pattern) {
    std::vector<uint8_t> image(DISK_SIZE);
    tile(image, pattern);
    wd1771_attach(0, std::move(image), false);
}

void load(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t flags = input.byte();
    fresh_machine((flags & CONFIGURATION) == 3 ? 4 : flags & CONFIGURATION);
    if ((flags & CONFIGURATION) == 3) machine_cfg[CUSTOM_CONFIGURATION].ram_size = 0;
    printer_enabled = (flags & WITH_PRINTER) != 0;
    load_registers(input);
    if (flags & STANDARD_PICTURE) {
        program_standard_picture();
    } else {
        for (uint32_t number = 0; number < CRTC_REGISTERS; ++number) {
            crtc_write_register(number, input.byte());
        }
    }
    z80_out(0xFF, input.byte());
    const uint16_t origin = input.word();
    const auto program = input.rest();
    if (flags & ANY_ROM) tile({memory, BASIC_ROM_SIZE}, program);
    tile({memory + RAM_START, RAM_SIZE}, program);
    const size_t first = std::max<size_t>(origin, RAM_START);
    tile({memory + first, MEMORY_SIZE - first}, program);
    if (flags & WITH_DISK) insert_disk(program);
}

struct Outcome {
    z80_record processor;
    std::vector<uint8_t> contents;
};

Outcome outcome() { return {z80_state, {std::begin(memory), std::end(memory)}}; }

bool same(const Outcome& a, const Outcome& b) {
    const z80_record &x = a.processor, &y = b.processor;
    return x.af == y.af && x.bc == y.bc && x.de == y.de && x.hl == y.hl && x.ix == y.ix &&
           x.iy == y.iy && x.sp == y.sp && x.pc == y.pc && x.af_alt == y.af_alt &&
           x.bc_alt == y.bc_alt && x.de_alt == y.de_alt && x.hl_alt == y.hl_alt && x.i == y.i &&
           x.r == y.r && x.iff1 == y.iff1 && x.iff2 == y.iff2 &&
           x.interrupt_mode == y.interrupt_mode && x.irq == y.irq && x.nmi == y.nmi &&
           x.t_count == y.t_count && a.contents == b.contents;
}

Outcome run_lines(const uint8_t* data, size_t size) {
    load(data, size);
    machine_run();
    video_render_frame();
    return outcome();
}

Outcome run_beam(const uint8_t* data, size_t size, int32_t (*run)(int32_t)) {
    load(data, size);
    int32_t left = frame_budget();
    while (left > 0) left = run(left);
    return outcome();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fake_host = {};
    const Outcome lines = run_lines(data, size);
    const Outcome beam = run_beam(data, size, video_run_cycles);
    require(same(lines, beam), "the engines run the same program alike");
    if (size == 0 || !(data[0] & STEPPED)) return 0;
    const std::vector<uint8_t> picture(std::begin(frame_buffer), std::end(frame_buffer));
    const Outcome steps = run_beam(data, size, video_step);
    require(same(beam, steps), "steps run the same program alike");
    require(std::ranges::equal(picture, frame_buffer), "steps draw the same picture");
    return 0;
}
