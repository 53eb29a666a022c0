#include "cgenie/crtc.h"
#include "core/machine.h"
#include "debugger_view/fact_list.h"
#include "sound/ym2149.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>

namespace {

// ---- CRT controller ----------------------------------------------------------------------------

constexpr uint32_t CYCLES_PER_CHARACTER = 2;
constexpr uint32_t VIDEO_RAM = 0x4000;

std::string counted(uint32_t number, const char* of) { return std::to_string(number) + " " + of; }

const char* cursor_shape(uint32_t mode) {
    constexpr std::array shapes = {"steady", "hidden", "blinks fast", "blinks slowly"};
    return shapes[mode >> 5 & 3];
}

class CrtcSection final : public FactSection {
public:
    const char* title() const override { return "CRTC"; }

private:
    static uint32_t lines_of_frame() {
        return (crtc.vertical_total + 1) * (crtc.maximum_scan_line + 1) +
               crtc.vertical_total_adjust;
    }

    static std::string rates() {
        const double line = double(z80_state.clock_hz) / CYCLES_PER_CHARACTER /
                            std::max<double>(crtc.horizontal_total, 1);
        return counted(lines_of_frame(), "lines, ") +
               hertz_text(line / std::max<double>(lines_of_frame(), 1)) + ", lines at " +
               hertz_text(line);
    }

    static std::string meaning(size_t number) {
        switch (number) {
        case 0: return "line of " + counted(crtc.horizontal_total, "characters");
        case 1: return "shown of a line: " + counted(crtc.horizontal_displayed, "characters");
        case 2: return "horizontal sync at " + counted(crtc.horizontal_sync_position, "");
        case 3:
            return "sync " + counted(crtc.sync_widths & 0xF, "characters, ") +
                   counted(crtc.sync_widths >> 4, "lines");
        case 4: return "frame of " + counted(crtc.vertical_total + 1, "rows");
        case 5: return "and " + counted(crtc.vertical_total_adjust, "lines");
        case 6: return "shown: " + counted(crtc.vertical_displayed, "rows");
        case 7: return "vertical sync at row " + std::to_string(crtc.vertical_sync_position);
        case 8: return crtc.interlace_mask ? "interlaced" : "not interlaced";
        case 9: return "row of " + counted(crtc.maximum_scan_line + 1, "lines");
        case 10:
            return std::string("cursor ") + cursor_shape(crtc.cursor_mode) + ", from line " +
                   std::to_string(crtc.cursor_start_line);
        case 11: return "cursor to line " + std::to_string(crtc.cursor_end_line);
        case 12: return "picture from " + hex(VIDEO_RAM + (crtc.start_address & 0x3FFF), 4);
        case 14: return "cursor at " + hex(VIDEO_RAM + (crtc.cursor_address & 0x3FFF), 4);
        default: return {};
        }
    }

    std::vector<Fact> facts() const override {
        std::vector<Fact> facts;
        for (uint32_t number = 0; number < std::size(crtc.registers); ++number) {
            const uint8_t value = crtc_read_register(number);
            facts.push_back({"R" + std::to_string(number), hex(value, 2), meaning(number)});
        }
        facts.push_back({"", hex(crtc.selected, 2), "register selected by port FA"});
        facts.push_back({"", "", rates()});
        return facts;
    }
};

// ---- sound generator ---------------------------------------------------------------------------

constexpr uint32_t TONE_DIVIDER = 16, ENVELOPE_DIVIDER = 256;
enum psg_register : uint32_t {
    PSG_NOISE = 6,
    PSG_MIXER = 7,
    PSG_VOLUME = 8,
    PSG_ENVELOPE = 11,
    PSG_SHAPE = 13,
    PSG_PORT_A = 14,
    PSG_PORT_B = 15
};
constexpr uint8_t BY_ENVELOPE = 0x10, PORT_A_OUT = 0x40, PORT_B_OUT = 0x80;

class SoundSection final : public FactSection {
public:
    const char* title() const override { return "Sound"; }

private:
    static uint32_t word_of(uint32_t low, uint8_t high_mask) {
        return ym2149_peek_reg(low) | uint32_t(ym2149_peek_reg(low + 1) & high_mask) << 8;
    }
    static double clock() {
        return double(z80_state.clock_hz) / machine_cfg[active_machine_cfg].psg_divider;
    }
    static std::string frequency(uint32_t divider, uint32_t period) {
        return hertz_text(clock() / divider / std::max<double>(period, 1));
    }

    /// Bits as the shape of the envelope has them: continue, attack, alternate, hold.
    static const char* shape_text(uint8_t shape) {
        constexpr std::array shapes = {"\\___", "/___", "\\\\\\\\", "\\___",  "\\/\\/",
                                       "\\---", "////", "/---",     "/\\/\\", "/___"};
        if (!(shape & 8)) return shapes[shape & 4 ? 1 : 0];
        return shapes[(shape & 7) + 2];
    }

    static Fact channel(uint32_t number) {
        const uint32_t period = word_of(2 * number, 0x0F);
        const uint8_t mixer = ym2149_peek_reg(PSG_MIXER);
        const uint8_t volume = ym2149_peek_reg(PSG_VOLUME + number);
        std::string text =
            volume & BY_ENVELOPE ? "envelope" : "volume " + std::to_string(volume & 0x0F);
        text += mixer >> number & 1 ? "" : ", tone " + frequency(TONE_DIVIDER, period);
        text += mixer >> (number + 3) & 1 ? "" : ", noise";
        return {std::string("tone ") + char('A' + number), hex(period, 3), text};
    }

    std::vector<Fact> facts() const override {
        std::vector<Fact> facts = {channel(0), channel(1), channel(2)};
        const uint32_t noise = ym2149_peek_reg(PSG_NOISE) & 0x1F;
        const uint32_t envelope = word_of(PSG_ENVELOPE, 0xFF);
        const uint8_t shape = ym2149_peek_reg(PSG_SHAPE) & 0x0F;
        const uint8_t mixer = ym2149_peek_reg(PSG_MIXER);
        facts.push_back({"noise", hex(noise, 2), frequency(TONE_DIVIDER, noise)});
        facts.push_back({"mixer", hex(mixer, 2), ""});
        facts.push_back({"envelope", hex(envelope, 4), frequency(ENVELOPE_DIVIDER, envelope)});
        facts.push_back({"shape", hex(shape, 1), shape_text(shape)});
        facts.push_back({"port A", hex(ym2149_peek_reg(PSG_PORT_A), 2),
                         mixer & PORT_A_OUT ? "out: printer" : "in"});
        facts.push_back({"port B", hex(ym2149_peek_reg(PSG_PORT_B), 2),
                         mixer & PORT_B_OUT ? "out" : "in: joysticks"});
        std::string all;
        for (uint32_t number = 0; number < 16; ++number) {
            all += (number ? " " : "") + hex(ym2149_peek_reg(number), 2);
        }
        facts.push_back({"selected", hex(ay.selected, 1), "by port F8"});
        facts.push_back({"R0-R15", "", all});
        return facts;
    }
};

} // namespace

NewSection new_crtc_section() { return std::make_unique<CrtcSection>(); }
NewSection new_sound_section() { return std::make_unique<SoundSection>(); }
