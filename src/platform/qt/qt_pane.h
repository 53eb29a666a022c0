#pragma once
#include "platform/pane.h"
#include "platform/picture_scaler.h"

#include <QImage>
#include <QRawFont>
#include <QRect>

class QPainter;
class QtCanvas;

/// The host's font of fixed pitch.
struct CellFont {
    /// No smaller than the desktop's, and that where so many pixels are no more.
    explicit CellFont(int pixels = 0);
    QRawFont font;
    Size cell;
};

/// A picture that is stretched onto something.
class QtStretch {
public:
    /// Returns the part of the device that changes, in its units, of which each has so many pixels
    /// of the screen. It is empty where the same is shown already.
    QRect set(const BitmapView& picture, const Rectangle& target, const Scaling& how, double ratio);
    /// Onto the part `dirty` of the device, black around the target; with `drawn` that, which is
    /// stretched already.
    void paint(QPainter& painter, const QRect& dirty, double ratio, const QImage* drawn = nullptr);

    const QImage& picture() const { return picture_; }
    const Scaling& how() const { return how_; }
    /// Where the picture lies in pixels of the screen, from the first one of the device.
    Rectangle area_on_screen(double ratio) const;

private:
    QImage picture_; ///< of 32 bits per pixel
    QImage before_;  ///< kept, so that its memory is used again
    Rectangle target_;
    Scaling how_;
    PictureScaler scaler_;
    QImage band_; ///< some rows of the stretched picture
};

/// Draws into a picture, whose device pixel ratio may be any.
class QtDrawing : public Pane {
public:
    explicit QtDrawing(const CellFont& font) : font_(font) {}

    void copy_bitmap(const BitmapView& picture, int x, int y) override;
    void stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                        const Scaling& how) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    Size cell_size() override { return font_.cell; }
    void text(int x, int y, const std::string& text, Colour colour, Colour background) override;
    void line(int x, int y, int length, Colour colour) override;
    void set_reading(const SliderReading&) override {}
    void set_buttons(const std::vector<PaneButton>&) override {}
    void set_message(const std::string&, int) override {}

private:
    /// The picture, in its present size.
    virtual QImage& drawing() = 0;
    /// Something was drawn there.
    virtual void drawn(const QRect& area) = 0;

    const CellFont& font_;
};

/// Shows either what was drawn into it, kept in a picture of one pixel per logical pixel, or
/// another picture stretched over it: whatever was asked for last.
class QtPane final : public QtDrawing {
public:
    explicit QtPane(QtCanvas& canvas);

    Size size() override;
    void show(bool on) override;

    bool is_shown() const { return shown_; }
    void stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                        const Scaling& how) override;
    void end_stretch();
    /// Onto the canvas.
    void paint(const QRect& dirty);

private:
    QImage& drawing() override;
    void drawn(const QRect& area) override;
    bool has_tube() const;
    QRect draw_tube(const QRect& stretched);

    QtCanvas& canvas_;
    bool shown_ = false;
    QImage drawing_; ///< of the canvas's size, or of one that it had
    bool stretched_ = false;
    QtStretch stretch_;
};
