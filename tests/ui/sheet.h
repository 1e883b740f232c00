#pragma once

#include "base/handles.h"

#include <windows.h>

#include <vector>

namespace support {

/// A bitmap in memory to draw on.
class sheet {
public:
    explicit sheet(SIZE size) : size_(size)
    {
        BITMAPINFO description{};
        description.bmiHeader = {sizeof description.bmiHeader, size.cx, size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        bitmap_.reset(::CreateDIBSection(nullptr, &description, DIB_RGB_COLORS, nullptr, nullptr, 0));
        ::SelectObject(device(), bitmap_.get());
    }

    HDC device() const noexcept { return device_.get(); }
    std::vector<COLORREF> pixels() const
    {
        std::vector<COLORREF> all;
        for (int y = 0; y < size_.cy; ++y)
            for (int x = 0; x < size_.cx; ++x)
                all.push_back(::GetPixel(device(), x, y));
        return all;
    }

private:
    SIZE size_;
    girder::unique_handle<girder::handle_traits::gdi<HBITMAP>> bitmap_;
    girder::unique_memory_device device_{::CreateCompatibleDC(nullptr)};
};

} // namespace support
