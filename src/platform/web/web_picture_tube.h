#pragma once
/// The picture tube by WebGL 2, on a canvas of its own over that of the picture.

#include "platform/picture_tube.h"
#include "platform/web/web_pane.h"

class WebPictureTube final : public PictureTube {
public:
    std::string start() override;
    void stop() override;
    int64_t take_draw_time() override;

    /// Shows the picture in that area of the canvas, of what was drawn before only what changes
    /// with those rows. False when there is no tube.
    bool draw(const CanvasPixels& picture, TubeRows changed, const Rectangle& area,
              const Scaling& how);
    /// Another picture is shown in its place.
    void cover();
    /// The graphics processor has forgotten everything, and may be there again.
    void lost(bool restored);

private:
    bool compile(TubeLook look);

    bool started_ = false;
    bool ready_ = false;
    bool shown_ = false;
    TubeLook look_ = TubeLook::off; ///< that is compiled
    Rectangle area_;
    Size from_;
};

/// There is one page.
WebPictureTube& web_picture_tube();
