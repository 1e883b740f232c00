#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace girder::ui {

/// A PNG picture of the program's resources, type "PNG".
class picture {
public:
    /// Decodes it by the imaging component of the system, so COM has to be there.
    /// \throws system_error
    explicit picture(int resource_id);

    /// Draws the picture as large as the part, over the background colour.
    /// \return false where this system cannot draw it (see drawing)
    bool draw(HDC device, const RECT& part, COLORREF background);

private:
    /// Makes it half as large while that is still larger than needed: the drawing itself looks at neighbours only, and
    /// would skip pixels.
    void shrink_towards(int width);

    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> pixels_; ///< blue, green, red, opacity; colours multiplied by the opacity
};

} // namespace girder::ui
