#include "sound/band_limited_steps.h"

#include <algorithm>

namespace {

constexpr uint32_t TAPS = STEP_TAPS;
constexpr uint32_t LENGTH = TAPS - 1; ///< of a step, in samples
constexpr uint32_t PHASES = 64;       ///< places between two samples; between them, interpolation
constexpr uint32_t PHASE_SHIFT = 10;  ///< a fraction of a sample in phases
constexpr int32_t PHASE_MASK = (1 << PHASE_SHIFT) - 1;
constexpr uint32_t UNIT_SHIFT = 15;
constexpr double PI = 3.141592653589793;

/// The sinc's cutoff as a part of the sample rate, and the window's shape. An attenuation of 80 dB
/// takes a band of 7.8 kHz with this length; the band ends at half the sample rate.
constexpr double CUTOFF = 0.419;
constexpr double KAISER_BETA = 7.857;

// The table is made by the compiler, so that it is the same on every host: mathematical libraries
// differ in the last bit.

/// Modified Bessel function of the first kind, order 0, of twice the root of `x`, 0 to 16.
constexpr double bessel_i0(double x) {
    double sum = 1, term = 1;
    for (int n = 1; n < 32; ++n) sum += term *= x / (n * n);
    return sum;
}

/// For angles up to 1.
constexpr double sine(double angle) {
    double sum = angle, term = angle;
    for (int n = 2; n < 22; n += 2) sum += term *= -angle * angle / (n * (n + 1));
    return sum;
}

constexpr int POINTS = LENGTH * PHASES;
constexpr int HALVES = 2 * POINTS; ///< half the distance of two points

/// The impulse whose integral the step is, at every half distance from its beginning.
constexpr std::array<double, HALVES + 1> impulse() {
    std::array<double, HALVES + 1> result = {};
    constexpr double angle = 2 * PI * CUTOFF / (2 * PHASES);
    constexpr double half = sine(angle / 2);
    constexpr double turn = 4 * half * half; // 2 - 2 cos (angle)
    double sin = 0, growth = sine(angle);
    result[POINTS] = bessel_i0(KAISER_BETA * KAISER_BETA / 4);
    for (int n = 1; n < POINTS; ++n) {
        sin += growth;
        growth -= turn * sin;
        const double edge = double(n) / POINTS;
        const double window = bessel_i0(KAISER_BETA * KAISER_BETA / 4 * (1 - edge * edge));
        result[POINTS + n] = result[POINTS - n] = sin / (n * angle) * window;
    }
    return result;
}

/// The step at every point, in units.
constexpr std::array<int, POINTS + 1> step_points() {
    constexpr std::array<double, HALVES + 1> from = impulse();
    std::array<double, POINTS + 1> integral = {};
    for (int n = 0; n < POINTS; ++n) { // Simpson's rule
        integral[n + 1] = integral[n] + from[2 * n] + 4 * from[2 * n + 1] + from[2 * n + 2];
    }
    std::array<int, POINTS + 1> result = {};
    for (int n = 0; n <= POINTS; ++n) {
        const double part = integral[n] / integral[POINTS] * (1 << UNIT_SHIFT);
        result[n] = int(part + (part < 0 ? -0.5 : 0.5));
    }
    return result;
}

/// By how much a step changes each sample, and the difference to that in the next phase.
struct Taps {
    std::array<int16_t, TAPS> change;
    std::array<int16_t, TAPS> slope;
};
using StepTable = std::array<Taps, PHASES>;

constexpr StepTable build_table() {
    constexpr std::array<int, POINTS + 1> points = step_points();
    const auto change = [&](int phase, int tap) {
        const int end = (tap + 1) * int(PHASES) - phase;
        return points[std::clamp(end, 0, POINTS)] -
               points[std::clamp(end - int(PHASES), 0, POINTS)];
    };
    StepTable table = {};
    for (int phase = 0; phase < int(PHASES); ++phase) {
        for (int tap = 0; tap < int(TAPS); ++tap) {
            const int here = change(phase, tap);
            table[phase].change[tap] = int16_t(here);
            table[phase].slope[tap] = int16_t(change(phase + 1, tap) - here);
        }
    }
    return table;
}

constexpr StepTable step_table = build_table();

/// No line of the machine's own ever gets so far that a sum wraps around, but one of a damaged
/// state may.
int32_t wrapping_sum(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }

} // namespace

void steps_start(step_line& line, int32_t level) {
    line = {};
    line.level = level << UNIT_SHIFT;
}

bool steps_come_to(const step_line& line, int32_t level) {
    int64_t sum = line.level;
    for (const int32_t change : line.changes) sum += change;
    return sum == int64_t(level) << UNIT_SHIFT;
}

void steps_begin(const step_line& line, step_block& block, uint32_t count) {
    block.count = count;
    std::ranges::copy(line.changes, block.changes.begin());
    std::fill_n(block.changes.begin() + TAPS, count, 0);
}

void steps_add(step_block& block, uint32_t time, int32_t change) {
    const Taps& taps = step_table[(time % STEPS_SAMPLE) >> PHASE_SHIFT];
    const int32_t beyond = (change * int32_t(time & PHASE_MASK)) >> PHASE_SHIFT;
    int32_t* const target = &block.changes[time / STEPS_SAMPLE];
    for (uint32_t n = 0; n < TAPS; ++n) {
        const int32_t part = taps.change[n] * int16_t(change) + taps.slope[n] * int16_t(beyond);
        target[n] = wrapping_sum(target[n], part);
    }
}

void steps_take(step_line& line, const step_block& block, uint16_t* buffer, int32_t top) {
    int32_t level = line.level; // in a register
    for (uint32_t n = 0; n < block.count; ++n) {
        level = wrapping_sum(level, block.changes[n]);
        const int32_t rounded = wrapping_sum(level, 1 << (UNIT_SHIFT - 1)) >> UNIT_SHIFT;
        buffer[n] = uint16_t(std::min(rounded, top));
    }
    line.level = level;
    std::copy_n(block.changes.begin() + block.count, TAPS, line.changes.begin());
}
