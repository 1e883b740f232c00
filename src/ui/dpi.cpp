#include "ui/dpi.h"

#include "base/system_library.h"
#include "base/win32_error.h"
#include "ui/text_measure.h"

namespace girder::ui {

unique_font create_dialog_font(UINT dpi)
{
    constexpr int points = 8;
    LOGFONTW description{};
    description.lfHeight = -::MulDiv(points, static_cast<int>(dpi), 72);
    description.lfWeight = FW_NORMAL;
    description.lfCharSet = DEFAULT_CHARSET;
    ::lstrcpynW(description.lfFaceName, L"MS Shell Dlg", LF_FACESIZE);
    unique_font font{::CreateFontIndirectW(&description)};
    if (!font)
        throw_last_error("CreateFontIndirectW");
    return font;
}

dialog_units::dialog_units(HFONT font, UINT dpi) : dpi_(dpi)
{
    const text_measure measure(font);
    constexpr std::u16string_view letters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const extent alphabet = measure.line(letters);
    width_ = (alphabet.width / 26 + 1) / 2;
    height_ = alphabet.height;
}

void disable_system_dpi_layout(HWND dialog)
{
    const system_library user(u"user32.dll");
    if (const auto set_behavior =
            user.optional_function<decltype(::SetDialogDpiChangeBehavior)>("SetDialogDpiChangeBehavior"))
        set_behavior(dialog, DDC_DISABLE_ALL, DDC_DISABLE_ALL);
}

} // namespace girder::ui
