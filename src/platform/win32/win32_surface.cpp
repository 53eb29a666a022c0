#include "platform/win32/win32_surface.h"

#include "platform/win32/win32_library.h"

#include <ddraw.h>

#include <cstdio>
#include <utility>
#include <vector>

struct Win32Surface::DirectDraw {
    Win32Library library{L"ddraw.dll"};
    decltype(&DirectDrawCreate) create = nullptr;
    ComPointer<IDirectDraw> draw;
    ComPointer<IDirectDrawSurface> primary, back;
    ComPointer<IDirectDrawClipper> clipper;
    Size size; ///< of the back surface
    HWND window = nullptr;
    HWND bound_to = nullptr; ///< the window, or none under Wine
    bool is_smooth = false;  ///< how it stretches

    DirectDraw() { library.find("DirectDrawCreate", create); }

    /// The text of what failed, or none.
    std::string start(HWND main, Size picture);
    void stop();
    bool create_primary();
    bool create_clipper();
    void clip_to_window();
    bool create_back();
    bool finds_smooth();
    bool fill_back(const BitmapView& picture);
    void present(const RECT& target, Size source, bool clear);
};

namespace {

/// Wine lays a window of its own over one that DirectDraw is bound to, and takes it away only
/// together with that: the status bar would not be seen again.
bool is_wine() {
    void (*version)() = nullptr;
    return Win32Library(L"ntdll.dll").find("wine_get_version", version);
}

DDSURFACEDESC surface_description(DWORD flags, DWORD capabilities) {
    DDSURFACEDESC description = {};
    description.dwSize = sizeof description;
    description.dwFlags = flags | DDSD_CAPS;
    description.ddsCaps.dwCaps = capabilities;
    return description;
}

/// In video memory, or in the system's where there is none left.
bool create_surface(IDirectDraw& draw, DDSURFACEDESC description, const char* name,
                    ComPointer<IDirectDrawSurface>& surface) {
    const DWORD capabilities = description.ddsCaps.dwCaps;
    description.ddsCaps.dwCaps = capabilities | DDSCAPS_VIDEOMEMORY;
    if (SUCCEEDED(draw.CreateSurface(&description, ComResult(surface), nullptr))) return true;
    std::fprintf(stderr, "CreateSurface (%s) failed in videomemory, trying system memory...\n",
                 name);
    description.ddsCaps.dwCaps = capabilities | DDSCAPS_SYSTEMMEMORY;
    return SUCCEEDED(draw.CreateSurface(&description, ComResult(surface), nullptr));
}

/// A header and room for the colours of a picture of up to 8 bits per pixel.
struct BitmapInfo {
    BITMAPINFOHEADER header = {};
    RGBQUAD colours[256] = {};
};

BitmapInfo info_of(const BitmapView& picture) {
    BitmapInfo info;
    info.header.biSize = sizeof info.header;
    info.header.biWidth = picture.width;
    info.header.biHeight = -picture.height; // rows top-down
    info.header.biPlanes = 1;
    info.header.biBitCount = WORD(picture.bits);
    if (picture.bits > 8 || !picture.palette) return info;
    for (int n = 0; n < 1 << picture.bits; ++n) {
        const uint8_t* entry = picture.palette + ptrdiff_t{4} * n;
        info.colours[n] = {entry[0], entry[1], entry[2], 0};
    }
    return info;
}

} // namespace

// ---- DirectDraw --------------------------------------------------------------------------------

bool Win32Surface::DirectDraw::create_primary() {
    return create_surface(*draw, surface_description(0, DDSCAPS_PRIMARYSURFACE), "primary",
                          primary);
}

/// Bound to the window where one can be.
bool Win32Surface::DirectDraw::create_clipper() {
    if (FAILED(draw->CreateClipper(0, ComResult(clipper), nullptr))) return false;
    if (bound_to) {
        clipper->SetHWnd(0, bound_to);
    } else {
        clip_to_window();
    }
    primary->SetClipper(clipper.get());
    return true;
}

/// To what is seen of it at the moment.
void Win32Surface::DirectDraw::clip_to_window() {
    const HDC dc = ::GetDC(window);
    const HRGN seen = CreateRectRgn(0, 0, 0, 0);
    GetRandomRgn(dc, seen, SYSRGN); // in coordinates of the screen
    std::vector<uint8_t> bytes(GetRegionData(seen, 0, nullptr));
    auto* const list = reinterpret_cast<RGNDATA*>(bytes.data());
    GetRegionData(seen, DWORD(bytes.size()), list);
    clipper->SetClipList(list, 0);
    DeleteObject(seen);
    ::ReleaseDC(window, dc);
}

bool Win32Surface::DirectDraw::create_back() {
    DDSURFACEDESC description =
        surface_description(DDSD_WIDTH | DDSD_HEIGHT, DDSCAPS_OFFSCREENPLAIN);
    description.dwWidth = DWORD(size.width);
    description.dwHeight = DWORD(size.height);
    return create_surface(*draw, description, "back", back);
}

std::string Win32Surface::DirectDraw::start(HWND main, Size picture) {
    stop();
    if (!create) return NO_DIRECT_DRAW;
    window = main;
    bound_to = is_wine() ? nullptr : main;
    size = picture;
    if (FAILED(create(nullptr, ComResult(draw), nullptr))) return "DirectDrawCreate FAILED";
    if (FAILED(draw->SetCooperativeLevel(bound_to, DDSCL_NORMAL))) {
        return "SetCooperativeLevel FAILED";
    }
    if (!create_primary()) return "CreateSurface (primary) FAILED";
    if (!create_clipper()) return "CreateClipper FAILED";
    if (!create_back()) return "CreateSurface (back) FAILED";
    is_smooth = finds_smooth();
    return {};
}

/// Nobody can ask for colours that flow into each other, or for edges: so an edge is stretched.
bool Win32Surface::DirectDraw::finds_smooth() {
    constexpr int TOP = 16, HALF = 8, STRETCHED = 10;
    RECT from = {0, 0, 2 * HALF, HALF};
    RECT to = {0, TOP, STRETCHED * from.right, TOP + STRETCHED * from.bottom};
    HDC dc = nullptr;
    if (FAILED(back->GetDC(&dc))) return false;
    PatBlt(dc, 0, 0, HALF, HALF, BLACKNESS);
    PatBlt(dc, HALF, 0, HALF, HALF, WHITENESS);
    back->ReleaseDC(dc);
    if (FAILED(back->Blt(&to, back.get(), &from, DDBLT_WAIT, nullptr))) return false;
    if (FAILED(back->GetDC(&dc))) return false;
    bool mixed = false;
    for (int x = 0; x < to.right; ++x) {
        const COLORREF colour = GetPixel(dc, x, (TOP + int(to.bottom)) / 2);
        mixed = mixed || (colour != RGB(0, 0, 0) && colour != RGB(255, 255, 255));
    }
    back->ReleaseDC(dc);
    return mixed;
}

void Win32Surface::DirectDraw::stop() {
    back.reset();
    primary.reset();
    clipper.reset();
    if (draw) draw->SetCooperativeLevel(bound_to, DDSCL_NORMAL);
    draw.reset();
}

bool Win32Surface::DirectDraw::fill_back(const BitmapView& picture) {
    HDC dc = nullptr;
    if (FAILED(back->GetDC(&dc))) return false;
    const BitmapInfo info = info_of(picture);
    SetDIBitsToDevice(dc, 0, 0, DWORD(picture.width), DWORD(picture.height), 0, 0, 0,
                      UINT(picture.height), picture.pixels,
                      reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS);
    back->ReleaseDC(dc);
    return true;
}

/// A surface that was lost, as to another program, is there again for the next picture.
void Win32Surface::DirectDraw::present(const RECT& target, Size source, bool clear) {
    if (!bound_to) clip_to_window();
    if (clear) {
        DDBLTFX black = {};
        black.dwSize = sizeof black;
        primary->Blt(nullptr, nullptr, nullptr, DDBLT_COLORFILL | DDBLT_WAIT, &black);
    }
    RECT to = target;
    RECT from = {0, 0, source.width, source.height};
    if (SUCCEEDED(primary->Blt(&to, back.get(), &from, DDBLT_WAIT, nullptr))) return;
    primary->Restore();
    back->Restore();
}

// ---- the surface -------------------------------------------------------------------------------

Win32Surface::Win32Surface(Win32Context& context, Win32Panes& panes)
    : context_(context), panes_(panes) {}

Win32Surface::~Win32Surface() = default;

std::string Win32Surface::create(Size size) {
    if (!direct_draw_) direct_draw_ = std::make_unique<DirectDraw>();
    const std::string failure = direct_draw_->start(context_.window, size);
    exists_ = failure.empty();
    if (!exists_) direct_draw_->stop();
    return failure;
}

void Win32Surface::release() {
    if (direct_draw_) direct_draw_->stop();
    if (std::exchange(exists_, false)) panes_.picture().clear();
}

void Win32Surface::present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                           bool clear) {
    if (!exists_) return;
    const RECT on_desktop = context_.on_desktop(target);
    POINT origin = {0, 0};
    ClientToScreen(context_.window, &origin);
    const RECT in_client = {on_desktop.left - origin.x, on_desktop.top - origin.y,
                            on_desktop.right - origin.x, on_desktop.bottom - origin.y};
    const Rectangle dirty = panes_.picture().keep_stretched(picture, from_windows(in_client), how);
    const bool directly = panes_.picture_is_alone() && how.smooth == direct_draw_->is_smooth &&
                          direct_draw_->size == Size{picture.width, picture.height};
    const bool changes = std::exchange(shown_directly_, directly) != directly;
    if (directly) {
        if (!direct_draw_->fill_back(picture)) return;
        const Rectangle area =
            stretched_area(from_windows(on_desktop), {picture.width, picture.height}, how.whole);
        direct_draw_->present(to_windows(area), direct_draw_->size, clear || changes);
    } else if (clear || changes) {
        InvalidateRect(context_.window, nullptr, FALSE);
    } else {
        panes_.picture().announce(dirty);
    }
}
