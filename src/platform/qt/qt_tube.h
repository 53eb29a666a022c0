#pragma once
#include "platform/picture_tube.h"
#include "platform/tube_shader.h"

#include <QImage>

#include <memory>

/// Draws pictures as a picture tube on the graphics processor, and back into a picture that is
/// painted like any other. Nothing of OpenGL is loaded before the first start.
///
/// The window knows nothing of it. For an OpenGL widget Qt would make the window anew, without the
/// focus for a moment, and compose all of it by OpenGL from then on, which takes a processor that
/// stands in for a graphics processor longer than a frame.
class QtTube final : public PictureTube {
public:
    QtTube();
    ~QtTube() override;

    std::string start() override;
    void stop() override;
    int64_t take_draw_time() override;

    bool is_ready() const;
    /// Draws `picture` in `size` pixels, of what was drawn before only the rows that change.
    /// Returns those; none when nothing does. It has to be ready.
    TubeRows draw(const QImage& picture, QSize size, const Scaling& how);
    const QImage& drawn() const { return drawn_; }

private:
    class Context;
    std::unique_ptr<Context> context_;
    QImage picture_; ///< that `drawn_` shows
    QImage drawn_;
    Scaling how_;
    int64_t draw_time_ = 0;
};
