#include "sound/band_limited_steps.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t TAPS = 32;
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

/// Modified Bessel function of the first kind, order 0.
double bessel_i0(double x) {
    double sum = 1, term = 1;
    for (int n = 1; n < 50; ++n) sum += term *= (x / (2 * n)) * (x / (2 * n));
    return sum;
}

/// The impulse whose integral the step is; `x` in samples from its middle.
double impulse(double x) {
    const double edge = 2 * x / LENGTH;
    if (std::abs(edge) >= 1) return 0;
    const double angle = 2 * PI * CUTOFF * x;
    const double sinc = std::abs(angle) < 1e-9 ? 1 : std::sin(angle) / angle;
    return sinc * bessel_i0(KAISER_BETA * std::sqrt(1 - edge * edge));
}

/// By how much a step changes each sample, and by how much more in the next phase.
struct Taps {
    std::array<int16_t, TAPS> change;
    std::array<int16_t, TAPS> slope;
};
using StepTable = std::array<Taps, PHASES>;

StepTable build_table() {
    constexpr int POINTS = LENGTH * PHASES;
    constexpr double DISTANCE = 1.0 / PHASES;
    std::array<double, POINTS + 1> integral = {};
    for (int n = 0; n < POINTS; ++n) { // Simpson's rule
        const double x = n * DISTANCE - LENGTH / 2.0;
        integral[n + 1] =
            integral[n] + impulse(x) + 4 * impulse(x + DISTANCE / 2) + impulse(x + DISTANCE);
    }
    const auto step = [&](int point) {
        if (point <= 0) return 0;
        const double part = integral[std::min(point, POINTS)] / integral[POINTS];
        return int(std::lround(part * (1 << UNIT_SHIFT)));
    };
    const auto change = [&](int phase, int tap) {
        const int end = (tap + 1) * int(PHASES) - phase;
        return step(end) - step(end - int(PHASES));
    };
    StepTable table;
    for (int phase = 0; phase < int(PHASES); ++phase) {
        for (int tap = 0; tap < int(TAPS); ++tap) {
            const int here = change(phase, tap);
            table[phase].change[tap] = int16_t(here);
            table[phase].slope[tap] = int16_t(change(phase + 1, tap) - here);
        }
    }
    return table;
}

const StepTable& step_table() {
    static const StepTable table = build_table();
    return table;
}

} // namespace

void steps_start(step_line& line, int32_t level) {
    line = {};
    line.level = level << UNIT_SHIFT;
}

void steps_add(step_line& line, uint32_t time, int32_t change) {
    const Taps& taps = step_table()[(time % STEPS_SAMPLE) >> PHASE_SHIFT];
    const int32_t beyond = (change * int32_t(time & PHASE_MASK)) >> PHASE_SHIFT;
    int32_t* const target = &line.changes[line.position + time / STEPS_SAMPLE];
    for (uint32_t n = 0; n < TAPS; ++n) {
        target[n] += taps.change[n] * int16_t(change) + taps.slope[n] * int16_t(beyond);
    }
}

void steps_take(step_line& line, uint16_t* buffer, uint32_t count, int32_t top) {
    int32_t* const changes = &line.changes[line.position];
    int32_t level = line.level; // in a register
    for (uint32_t n = 0; n < count; ++n) {
        level += changes[n];
        buffer[n] = uint16_t(std::min((level + (1 << (UNIT_SHIFT - 1))) >> UNIT_SHIFT, top));
    }
    line.level = level;
    line.position += count;
    if (line.position + STEPS_BLOCK + TAPS < line.changes.size()) return;
    const auto pending = line.changes.begin() + line.position;
    std::copy_n(pending, TAPS, line.changes.begin());
    std::fill(line.changes.begin() + TAPS, line.changes.end(), 0);
    line.position = 0;
}
