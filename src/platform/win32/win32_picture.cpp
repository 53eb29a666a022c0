#include "platform/win32/win32_picture.h"

#include "platform/win32/win32_context.h"

#include <algorithm>

#include <objidl.h>

#include <gdiplus.h>

struct Win32Picture::Images {
    std::unique_ptr<Gdiplus::Bitmap> whole;
    std::unique_ptr<Gdiplus::Bitmap> fitting; ///< in the size that it was drawn in last
};

GdiPlus::GdiPlus() {
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&token_, &input, nullptr);
}

GdiPlus::~GdiPlus() {
    if (token_) Gdiplus::GdiplusShutdown(token_);
}

Win32Picture::Win32Picture() : images_(std::make_unique<Images>()) {}

Win32Picture::~Win32Picture() = default;

void Win32Picture::set(const FormPicture& picture) {
    const auto& [width, height, pixels, file] = picture;
    *images_ = {};
    if (!file.empty()) {
        Gdiplus::Bitmap in_file(wide(file).c_str()); // keeps the file open
        images_->whole.reset(in_file.Clone(0, 0, INT(in_file.GetWidth()), INT(in_file.GetHeight()),
                                           PixelFormat32bppRGB));
    } else if (!pixels.empty() && pixels.size() == size_t(width) * size_t(height)) {
        images_->whole = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat32bppRGB);
        Gdiplus::Rect all(0, 0, width, height);
        Gdiplus::BitmapData rows{};
        if (images_->whole->LockBits(&all, Gdiplus::ImageLockModeWrite, PixelFormat32bppRGB,
                                     &rows) == Gdiplus::Ok) {
            for (int y = 0; y < height; ++y) {
                auto* row = static_cast<uint8_t*>(rows.Scan0) + ptrdiff_t(y) * rows.Stride;
                const Colour* from = pixels.data() + ptrdiff_t(y) * width;
                std::copy_n(from, width, reinterpret_cast<Colour*>(row));
            }
            images_->whole->UnlockBits(&rows);
        }
    }
    if (images_->whole && images_->whole->GetLastStatus() != Gdiplus::Ok) *images_ = {};
}

bool Win32Picture::is_empty() const { return !images_->whole; }

void Win32Picture::draw(HDC canvas, const RECT& place) {
    if (is_empty()) return;
    const int width = int(place.right - place.left), height = int(place.bottom - place.top);
    std::unique_ptr<Gdiplus::Bitmap>& fitting = images_->fitting;
    if (!fitting || int(fitting->GetWidth()) != width || int(fitting->GetHeight()) != height) {
        fitting = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat32bppRGB);
        Gdiplus::Graphics painter(fitting.get());
        painter.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
        painter.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
        Gdiplus::ImageAttributes edges; // or they would be mixed with the background
        edges.SetWrapMode(Gdiplus::WrapModeTileFlipXY);
        painter.DrawImage(images_->whole.get(), Gdiplus::Rect(0, 0, width, height), 0, 0,
                          INT(images_->whole->GetWidth()), INT(images_->whole->GetHeight()),
                          Gdiplus::UnitPixel, &edges);
    }
    Gdiplus::Graphics painter(canvas);
    painter.DrawImage(fitting.get(), INT(place.left), INT(place.top), width, height);
}
