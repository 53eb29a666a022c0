#include "platform/tube_shader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

/// `place` goes from (0, 0) at the top left to (1, 1).
constexpr const char* VERTEX = R"(
out vec2 place;

void main() {
    vec2 corner = vec2((gl_VertexID << 1) & 2, gl_VertexID & 2);
    place = corner;
    gl_Position = vec4(corner * 2.0 - 1.0, 0.0, 1.0);
    if (!TOP_FIRST) gl_Position.y = -gl_Position.y;
    uniform_part();
}
)";

constexpr const char* FRAGMENT = R"(
in vec2 place;
out vec4 colour;

uniform sampler2D picture;

// Light adds up in proportion to the square of a picture's numbers, near enough.
vec3 light(vec3 numbers) { return numbers * numbers; }
vec3 numbers(vec3 light) { return sqrt(light); }
)";

/// A bell that reaches over eight pixels of the picture on either side.
constexpr int GLOW_REACH = 8; ///< steps of half a pixel of the glow
constexpr const char* GLOW = R"(
const float BELL[9] = float[9](0.1128, 0.1086, 0.0967, 0.0797, 0.0609, 0.0430, 0.0281, 0.0170,
                               0.0096);

void main() {
    vec3 sum = BELL[0] * light(texture(picture, place).rgb);
    for (int n = 1; n < 9; ++n) {
        sum += BELL[n] * (light(texture(picture, place + float(n) * STEP).rgb) +
                          light(texture(picture, place - float(n) * STEP).rgb));
    }
    colour = vec4(numbers(sum), 1.0);
}
)";

/// The face's part of the vertex text: what is the same for all pixels, so that they need not
/// divide.
constexpr const char* FACE_VERTEX = R"(
uniform sampler2D picture;
uniform vec2 target;
uniform float lines;

flat out vec2 size;         // of the picture
flat out vec2 texel;        // of which one pixel is so much
flat out vec2 steepness;    // of its pixels' edges
flat out vec2 inner;        // from the middle to where the round corners begin, in the target's pixels
flat out float radius;      // of the corners
flat out float depth;       // of the gaps between scan lines
flat out float straight;    // 1: scan lines are two rows of the target
flat out float stripe_rate; // stripes of the mask in a pixel

void uniform_part() {
    float line_height = target.y / lines;
    size = vec2(textureSize(picture, 0));
    texel = 1.0 / size;
    steepness = max(vec2(1.0), vec2(SHARP_X, SHARP_Y) * target.y / size.y);
    radius = 0.5 * CORNER * target.y;
    inner = 0.5 * target - radius;
    // Lines of two pixels would beat with them where the face bulges: there they stay straight, and
    // are fainter.
    straight = line_height < 2.75 ? 1.0 : 0.0;
    depth = SCAN * mix(min(line_height - 2.0, 1.0), clamp(line_height - 1.0, 0.0, 0.5), straight);
    stripe_rate = 1.0 / max(1.0, floor(line_height / 3.0 + 0.5));
}
)";

constexpr const char* FACE = R"(
uniform sampler2D glow;
uniform vec2 target;
uniform float lines;

flat in vec2 size;
flat in vec2 texel;
flat in vec2 steepness;
flat in vec2 inner;
flat in float radius;
flat in float depth;
flat in float straight;
flat in float stripe_rate;

// The face bulges: what lies outside the picture's edges is beyond the tube.
vec2 bulged(vec2 centred) {
    vec2 other = centred.yx * centred.yx;
    return centred + centred * vec2(CURVE_X, CURVE_Y) * other;
}

// 1 on the face and 0 beyond it, with one pixel of transition and round corners.
float face(vec2 centred) {
    vec2 beyond = max(abs(centred) * target * 0.5 - inner, 0.0);
    float reach = radius + 0.5;
    return clamp((reach * reach - dot(beyond, beyond)) * (0.5 / radius), 0.0, 1.0);
}

// Where to sample so that edges are so many times as steep as linear sampling has them.
vec2 steep(vec2 position) {
    vec2 first = floor(position - 0.5) + 0.5;
    return first + clamp((position - first - 0.5) * steepness + 0.5, 0.0, 1.0);
}

// Stripes of red, green and blue, which may shift from row to row. On average they take nothing
// away.
vec3 mask(float strength) {
    vec2 place = floor(gl_FragCoord.xy * stripe_rate);
    float row = floor(place.y * 0.3334);
    place.x += STAGGER * (row - 2.0 * floor(row * 0.5));
    float stripe = place.x - 3.0 * floor(place.x * (1.0 / 3.0) + 0.1);
    bvec3 own = equal(vec3(stripe), vec3(0.0, 1.0, 2.0));
    return mix(vec3(1.0 - strength), vec3(1.0 + 2.0 * strength), own);
}

float brightest(vec3 light) { return max(max(light.r, light.g), light.b); }

void main() {
    vec2 centred = bulged(place * 2.0 - 1.0);
    vec2 spot = centred * 0.5 + 0.5;
    vec3 beam = light(texture(picture, steep(spot * size) * texel).rgb);
    vec3 lit = GAIN * (beam + GLOW * light(texture(glow, spot).rgb));

    // A bright beam is a wide one, and covers the gaps.
    float gaps = 1.0 - BLOOM * min(brightest(lit), 1.0);
    float line = mix(spot.y * lines, 0.5 * gl_FragCoord.y + 0.25, straight);
    float from_middle = 2.0 * fract(line) - 1.0;
    float profile = 1.0 - from_middle * from_middle;
    float gap = depth * gaps;
    // The profile's mean is 8/15; the series makes up for what the gaps take, without a division.
    float lost = gap * (7.0 / 15.0);
    lit *= (1.0 - gap + gap * profile * profile) * (1.0 + lost * (1.0 + lost * (1.0 + lost)));

    // What is too bright keeps its hue.
    lit *= 1.0 / max(1.0, brightest(lit));
    lit *= mask(MASK * gaps) * face(centred);
    colour = vec4(numbers(min(lit, 1.0)), 1.0);
}
)";

/// What the texts find in front of them.
struct Look {
    float curve_x, curve_y; ///< by which share of their length the edges bulge
    float corner;           ///< radius, of half the height
    float sharp_x, sharp_y; ///< steepness of edges, of that of a step
    float scan;             ///< depth of the gaps between scan lines
    float bloom;            ///< by how much less where it is bright
    float mask;             ///< depth of the shadow mask
    float stagger;          ///< 1: its stripes shift from row to row
    float glow;
    float gain;
};

constexpr Look SOFT = {.curve_x = 0.010F,
                       .curve_y = 0.016F,
                       .corner = 0.03F,
                       .sharp_x = 0.5F,
                       .sharp_y = 1.0F,
                       .scan = 0.45F,
                       .bloom = 0.5F,
                       .mask = 0.08F,
                       .stagger = 0,
                       .glow = 0.05F,
                       .gain = 1.04F};

constexpr Look STRONG = {.curve_x = 0.026F,
                         .curve_y = 0.040F,
                         .corner = 0.07F,
                         .sharp_x = 0.45F,
                         .sharp_y = 0.9F,
                         .scan = 0.80F,
                         .bloom = 0.45F,
                         .mask = 0.30F,
                         .stagger = 1,
                         .glow = 0.20F,
                         .gain = 0.96F};

const Look& numbers_of(TubeLook look) { return look == TubeLook::soft ? SOFT : STRONG; }

std::string constant(const char* name, float value) {
    // In thousandths: a number as text may depend on the user's language.
    const long thousandths = std::lround(value * 1000);
    std::array<char, 64> line{};
    std::snprintf(line.data(), line.size(), "const float %s = %ld.0 / 1000.0;\n", name,
                  thousandths);
    return line.data();
}

std::string constants(const Look& look) {
    return constant("CURVE_X", look.curve_x) + constant("CURVE_Y", look.curve_y) +
           constant("CORNER", look.corner) + constant("SHARP_X", look.sharp_x) +
           constant("SHARP_Y", look.sharp_y) + constant("SCAN", look.scan) +
           constant("BLOOM", look.bloom) + constant("MASK", look.mask) +
           constant("STAGGER", look.stagger) + constant("GLOW", look.glow) +
           constant("GAIN", look.gain);
}

/// Half a pixel of the glow, in one direction.
std::string glow_step(TubeStage stage) {
    const bool across = stage == TubeStage::glow_across;
    const std::string step = "0.5 / " + std::to_string(across ? TUBE_GLOW.width : TUBE_GLOW.height);
    return "const vec2 STEP = vec2(" + (across ? step + ".0, 0.0" : "0.0, " + step + ".0") + ");\n";
}

std::string first_lines(const TubeHost& host) {
    return std::string(host.first_line) + "\nprecision highp float;\n";
}

/// Rows of a texture that are sampled between `first` and `end`, as rows of another height.
TubeRows sampled(double first, double end, double factor, int rows) {
    return {std::clamp(int(std::floor(first * factor)), 0, rows),
            std::clamp(int(std::ceil(end * factor)), 0, rows)};
}

} // namespace

std::string tube_vertex_text(const TubeHost& host, TubeStage stage, TubeLook look) {
    const bool face = stage == TubeStage::face;
    return first_lines(host) + "const bool TOP_FIRST = " + (host.top_first ? "true" : "false") +
           ";\n" + constants(numbers_of(look)) + (face ? FACE_VERTEX : "void uniform_part() {}\n") +
           VERTEX;
}

std::string tube_fragment_text(const TubeHost& host, TubeStage stage, TubeLook look) {
    const std::string begin = first_lines(host);
    if (stage == TubeStage::face) return begin + constants(numbers_of(look)) + FRAGMENT + FACE;
    return begin + glow_step(stage) + FRAGMENT + GLOW;
}

TubeRows tube_glow_rows(TubeRows changed, int rows) {
    // Linear sampling looks one row further in the picture and in the first texture.
    constexpr double MARGIN = GLOW_REACH / 2.0 + 1;
    const double factor = double(TUBE_GLOW.height) / rows;
    return sampled((changed.first - 1) * factor - MARGIN, (changed.end + 1) * factor + MARGIN, 1,
                   TUBE_GLOW.height);
}

TubeRows tube_face_rows(TubeRows changed, int rows, int target_rows, TubeLook look) {
    const TubeRows glow = tube_glow_rows(changed, rows);
    const double curve = numbers_of(look).curve_y;
    // From the middle, half a height as 1. The edges bulge by the curve, the middle not at all.
    const auto centred = [](int row) { return 2.0 * row / TUBE_GLOW.height - 1; };
    const double top = centred(glow.first - 1);
    const double bottom = centred(glow.end + 1);
    const double highest = std::min(top, top / (1 + curve));
    const double lowest = std::max(bottom, bottom / (1 + curve));
    return sampled(highest + 1, lowest + 1, target_rows / 2.0, target_rows);
}
