#pragma once

#include "base/system_library.h"
#include "base/unique_com.h"

#include <windows.h>

#include <d2d1.h>
#include <dwrite.h>

#include <functional>

namespace girder::ui {

/// Direct2D and DirectWrite, loaded from the system's folder while the object lives. One thread at a time.
class drawing {
public:
    /// \throws system_error where this system cannot draw with them
    drawing();
    drawing(const drawing&) = delete;
    drawing& operator=(const drawing&) = delete;
    ~drawing() = default;

    /// The object of the process; null where this system cannot draw so, which is logged once: GDI has to do then.
    static drawing* shared();
    /// Has the object made before it is needed, on the thread pool: that can take most of a second where Direct2D has
    /// no hardware to draw with. Until it is there this thread's windows answer and are painted, and input waits.
    /// User-interface thread only.
    /// \param owner  of the window that will be drawn in; may be null
    /// \return false where the owner was closed meanwhile
    static bool prepare(HWND owner) noexcept;

    IDWriteFactory& direct_write() const noexcept { return *direct_write_.get(); }

    /// Draws into a part of a device context, whose upper left corner is the drawing's origin and whose pixels are its
    /// units. A lost device, which any call may tell of, is replaced, and `draw` called again for the new one.
    /// \param draw  may throw system_error
    /// \return false when nothing could be drawn
    bool paint(HDC device, const RECT& part, const std::function<void(ID2D1RenderTarget&)>& draw);

private:
    static void make_on_the_pool() noexcept;
    void make_target();
    /// The first time takes longer than all others. Where it fails, so will the drawings, and tell.
    void draw_once();
    HRESULT paint_once(HDC device, const RECT& part, const std::function<void(ID2D1RenderTarget&)>& draw);

    system_library direct2d_library_;
    system_library direct_write_library_;
    unique_com<ID2D1Factory> direct2d_;
    unique_com<IDWriteFactory> direct_write_;
    unique_com<ID2D1DCRenderTarget> target_;
};

/// An opaque colour for Direct2D.
D2D1_COLOR_F as_direct2d(COLORREF colour) noexcept;

} // namespace girder::ui
