#pragma once
/// The picture tube, as text for a graphics processor: GLSL ES 3.00, which WebGL 2 takes as it is,
/// and desktop OpenGL from version 3.2 on with another first line. A host compiles the texts and
/// draws three times, each time one triangle of three vertices without attributes:
///
/// 1. glow_across: the picture into a texture of the size TUBE_GLOW
/// 2. glow_down: that into a second one
/// 3. face: the picture and the second one into the target, in the target's own pixels
///
/// All textures are sampled linearly and not beyond their edges. Uniforms: `picture` is the texture
/// to draw from, `glow` the second one of the glow, `target` the target's size in pixels, and
/// `lines` the number of scan lines in the picture.

#include "platform/geometry.h"
#include "platform/pane.h"

#include <cstdint>
#include <string>

enum class TubeStage : uint8_t { glow_across, glow_down, face };

constexpr Size TUBE_GLOW{192, 144};

/// What differs from host to host.
struct TubeHost {
    const char* first_line = "#version 300 es";
    /// The target's first row is the top one, as in a texture that is read back; on a screen it is
    /// the lowest.
    bool top_first = false;
};

/// For a look that is not off.
std::string tube_vertex_text(const TubeHost& host, TubeStage stage, TubeLook look);
std::string tube_fragment_text(const TubeHost& host, TubeStage stage, TubeLook look);

/// Some rows of a picture or target, `end` not among them.
struct TubeRows {
    int first = 0;
    int end = 0;
    bool operator==(const TubeRows&) const = default;
};

/// What changes of the glow, and what of the target with so many rows, where these rows of a
/// picture with `rows` rows change.
TubeRows tube_glow_rows(TubeRows changed, int rows);
TubeRows tube_face_rows(TubeRows changed, int rows, int target_rows, TubeLook look);
