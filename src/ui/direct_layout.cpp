#include "base/debug_log.h"
#include "base/system_error.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "ui/drawing.h"
#include "ui/rich_layout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace girder::ui {
namespace {

/// An object on the stack that COM calls refer to only while they run, or that its owner outlives.
template <typename Interface>
class owned_elsewhere : public Interface {
public:
    owned_elsewhere() = default;
    owned_elsewhere(const owned_elsewhere&) = default;
    owned_elsewhere& operator=(const owned_elsewhere&) = default;
    virtual ~owned_elsewhere() = default;

    STDMETHODIMP QueryInterface(REFIID wanted, void** object) noexcept override
    {
        const bool known = wanted == __uuidof(IUnknown) || wanted == __uuidof(Interface);
        *object = known ? static_cast<Interface*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 1; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return 1; }
};

/// Marks the range of one link in a text layout, by its address.
class link_mark final : public owned_elsewhere<IUnknown> {};

/// Takes a layout's glyphs one run after the other. What IDWriteTextRenderer does not need to do is done here.
class glyph_sink : public owned_elsewhere<IDWriteTextRenderer> {
public:
    STDMETHODIMP IsPixelSnappingDisabled(void*, BOOL* disabled) noexcept override
    {
        *disabled = FALSE;
        return S_OK;
    }
    STDMETHODIMP GetCurrentTransform(void*, DWRITE_MATRIX* transform) noexcept override
    {
        *transform = {.m11 = 1, .m12 = 0, .m21 = 0, .m22 = 1, .dx = 0, .dy = 0};
        return S_OK;
    }
    STDMETHODIMP GetPixelsPerDip(void*, FLOAT* pixels) noexcept override
    {
        *pixels = 1;
        return S_OK;
    }
    STDMETHODIMP DrawUnderline(void*, FLOAT, FLOAT, const DWRITE_UNDERLINE*, IUnknown*) noexcept override
    {
        return S_OK;
    }
    STDMETHODIMP DrawStrikethrough(void*, FLOAT, FLOAT, const DWRITE_STRIKETHROUGH*, IUnknown*) noexcept override
    {
        return S_OK;
    }
    STDMETHODIMP DrawInlineObject(void*, FLOAT, FLOAT, IDWriteInlineObject*, BOOL, BOOL, IUnknown*) noexcept override
    {
        return S_OK;
    }
};

/// The room of a run: its advances wide, and as high as its font.
area area_of(const DWRITE_GLYPH_RUN& run, float x, float base_line)
{
    DWRITE_FONT_METRICS font{};
    run.fontFace->GetMetrics(&font);
    const float scale = run.fontEmSize / static_cast<float>(font.designUnitsPerEm);
    float width = 0;
    for (UINT32 i = 0; i < run.glyphCount; ++i)
        width += run.glyphAdvances[i];
    const bool leftwards = (run.bidiLevel & 1) != 0;
    const auto left = static_cast<int>(std::floor(leftwards ? x - width : x));
    const auto right = static_cast<int>(std::ceil(leftwards ? x : x + width));
    const auto top = static_cast<int>(std::floor(base_line - static_cast<float>(font.ascent) * scale));
    const auto bottom = static_cast<int>(std::ceil(base_line + static_cast<float>(font.descent) * scale));
    return {.x = left, .y = top, .width = right - left, .height = bottom - top};
}

/// What a layout does not tell otherwise: where its links are, and which characters the fonts have no glyphs for.
class layout_reader : public glyph_sink {
public:
    explicit layout_reader(const std::vector<link_mark>& marks) : marks_(marks) {}

    STDMETHODIMP DrawGlyphRun(void*, FLOAT x, FLOAT base_line, DWRITE_MEASURING_MODE, const DWRITE_GLYPH_RUN* run,
                              const DWRITE_GLYPH_RUN_DESCRIPTION* characters, IUnknown* effect) noexcept override
    {
        try {
            if (effect) {
                const auto link = static_cast<int>(static_cast<const link_mark*>(effect) - marks_.data());
                links.push_back({.link = link, .place = area_of(*run, x, base_line)});
            }
            for (UINT32 i = 0; i < characters->stringLength; ++i)
                if (run->glyphIndices[characters->clusterMap[i]] == 0)
                    without_glyph.push_back(characters->textPosition + i);
            return S_OK;
        } catch (...) {
            return E_OUTOFMEMORY;
        }
    }

    std::vector<link_area> links;
    std::vector<UINT32> without_glyph; ///< positions in the text

private:
    const std::vector<link_mark>& marks_;
};

class text_painter : public glyph_sink {
public:
    text_painter(ID2D1RenderTarget& target, const IUnknown* hovered) : target_(target), hovered_(hovered)
    {
        const rich_colours colours;
        target_.Clear(as_direct2d(colours.background));
        const std::array<COLORREF, 3> needed{colours.text, colours.link, colours.hovered_link};
        for (std::size_t i = 0; i < needed.size(); ++i)
            throw_if_failed(target_.CreateSolidColorBrush(as_direct2d(needed[i]), brushes_[i].put()),
                            "CreateSolidColorBrush");
    }

    STDMETHODIMP DrawGlyphRun(void*, FLOAT x, FLOAT base_line, DWRITE_MEASURING_MODE mode, const DWRITE_GLYPH_RUN* run,
                              const DWRITE_GLYPH_RUN_DESCRIPTION*, IUnknown* effect) noexcept override
    {
        target_.DrawGlyphRun({x, base_line}, run, brush_for(effect), mode);
        return S_OK;
    }
    STDMETHODIMP DrawUnderline(void*, FLOAT x, FLOAT base_line, const DWRITE_UNDERLINE* line,
                               IUnknown* effect) noexcept override
    {
        const float top = std::round(base_line + line->offset);
        const D2D1_RECT_F stroke{x, top, x + line->width, top + std::max(1.0F, std::round(line->thickness))};
        target_.FillRectangle(&stroke, brush_for(effect));
        return S_OK;
    }

private:
    ID2D1Brush* brush_for(const IUnknown* effect) const noexcept
    {
        if (!effect)
            return brushes_[0].get();
        return brushes_[effect == hovered_ ? 2 : 1].get();
    }

    ID2D1RenderTarget& target_;
    const IUnknown* hovered_;
    std::array<unique_com<ID2D1SolidColorBrush>, 3> brushes_; ///< of text, links and the hovered link
};

/// The name of a family of fonts if it has a glyph for a character.
bool has_glyph(IDWriteFontFamily& family, UINT32 character, std::span<wchar_t> name)
{
    unique_com<IDWriteFont> font;
    unique_com<IDWriteLocalizedStrings> names;
    BOOL has_glyph = FALSE;
    return SUCCEEDED(family.GetFont(0, font.put())) && SUCCEEDED(font.get()->HasCharacter(character, &has_glyph)) &&
           has_glyph && SUCCEEDED(family.GetFamilyNames(names.put())) &&
           SUCCEEDED(names.get()->GetString(0, name.data(), static_cast<UINT32>(name.size())));
}

struct font_in_use {
    LOGFONTW description{};
    TEXTMETRICW metrics{};
    std::array<wchar_t, LF_FACESIZE> face{}; ///< the mapped name: DirectWrite does not know "MS Shell Dlg"
};

font_in_use look_at(HFONT font)
{
    font_in_use seen;
    ::GetObjectW(font, sizeof seen.description, &seen.description);
    const HDC screen = ::GetDC(nullptr);
    const HGDIOBJ previous = ::SelectObject(screen, font);
    ::GetTextMetricsW(screen, &seen.metrics);
    ::GetTextFaceW(screen, static_cast<int>(seen.face.size()), seen.face.data());
    ::SelectObject(screen, previous);
    ::ReleaseDC(nullptr, screen);
    return seen;
}

class direct_layout : public rich_layout {
public:
    direct_layout(drawing& means, const rich_text& text, HFONT font) : means_(means), marks_(text.addresses.size())
    {
        constexpr float unlimited = 32767.0F;
        const font_in_use base = look_at(font);
        const auto size = static_cast<float>(std::abs(base.description.lfHeight));
        unique_com<IDWriteTextFormat> format;
        throw_if_failed(means_.direct_write().CreateTextFormat(
                            base.face.data(), nullptr, static_cast<DWRITE_FONT_WEIGHT>(base.description.lfWeight),
                            DWRITE_FONT_STYLE_NORMAL, DWRITE_FONT_STRETCH_NORMAL, size, L"", format.put()),
                        "CreateTextFormat");
        // Measured as GDI measures, so that the text agrees with the controls around it.
        throw_if_failed(means_.direct_write().CreateGdiCompatibleTextLayout(
                            as_wide(text.text.data()), static_cast<UINT32>(text.text.size()), format.get(), unlimited,
                            unlimited, 1.0F, nullptr, FALSE, layout_.put()),
                        "CreateGdiCompatibleTextLayout");
        for (const text_run& run : text.runs)
            set_style(run, size);
        set_line_spacing(text, base.metrics);
        fill_in_families(text.text);
    }

    extent arrange(int width) override
    {
        throw_if_failed(layout_.get()->SetMaxWidth(static_cast<float>(std::max(width, 1))), "SetMaxWidth");
        const extent size = size_broken_at(DWRITE_WORD_WRAPPING_WRAP);
        // Not every system breaks a word that is wider than the line.
        return size.width <= width ? size : size_broken_at(DWRITE_WORD_WRAPPING_CHARACTER);
    }

    std::vector<link_area> link_areas() override { return std::move(read().links); }

    bool paint(HDC device, const RECT& part, int scrolled, int hovered) override
    {
        return means_.paint(device, part, [&](ID2D1RenderTarget& target) {
            const link_mark* const mark = hovered >= 0 ? &marks_[static_cast<std::size_t>(hovered)] : nullptr;
            text_painter painter(target, mark);
            throw_if_failed(layout_.get()->Draw(nullptr, &painter, 0, static_cast<float>(-scrolled)),
                            "IDWriteTextLayout::Draw");
        });
    }

private:
    extent size_broken_at(DWRITE_WORD_WRAPPING places)
    {
        throw_if_failed(layout_.get()->SetWordWrapping(places), "SetWordWrapping");
        DWRITE_TEXT_METRICS metrics{};
        throw_if_failed(layout_.get()->GetMetrics(&metrics), "GetMetrics");
        return {.width = static_cast<int>(std::ceil(metrics.width)),
                .height = static_cast<int>(std::ceil(metrics.height))};
    }

    void set_style(const text_run& run, float size)
    {
        constexpr float whole = 100.0F;
        const DWRITE_TEXT_RANGE range{.startPosition = static_cast<UINT32>(run.begin),
                                      .length = static_cast<UINT32>(run.length)};
        if (run.style.bold)
            layout_.get()->SetFontWeight(DWRITE_FONT_WEIGHT_BOLD, range);
        layout_.get()->SetFontSize(std::round(size * static_cast<float>(run.style.percent) / whole), range);
        if (run.style.link >= 0) {
            layout_.get()->SetUnderline(TRUE, range);
            layout_.get()->SetDrawingEffect(&marks_[static_cast<std::size_t>(run.style.link)], range);
        }
    }

    /// Lines as far apart as GDI sets those of the largest size. The fonts' own advice differs from one to the other.
    void set_line_spacing(const rich_text& text, const TEXTMETRICW& metrics)
    {
        int percent = 100;
        for (const text_run& run : text.runs)
            percent = std::max(percent, run.style.percent);
        const auto scaled = [&](LONG length) { return static_cast<float>(::MulDiv(length, percent, 100)); };
        throw_if_failed(layout_.get()->SetLineSpacing(DWRITE_LINE_SPACING_METHOD_UNIFORM, scaled(metrics.tmHeight),
                                                      scaled(metrics.tmAscent)),
                        "SetLineSpacing");
    }

    layout_reader read()
    {
        layout_reader reader(marks_);
        throw_if_failed(layout_.get()->Draw(nullptr, &reader, 0, 0), "IDWriteTextLayout::Draw");
        return reader;
    }

    /// Takes characters that the dialog's font lacks from other families, where the system does not do so itself.
    void fill_in_families(std::u16string_view text)
    {
        unique_com<IDWriteFontCollection> fonts;
        std::array<wchar_t, LF_FACESIZE> name{};
        UINT32 i = 0;
        UINT32 misses = 0;
        for (const UINT32 position : read().without_glyph) {
            if (!fonts)
                throw_if_failed(means_.direct_write().GetSystemFontCollection(fonts.put(), FALSE),
                                "GetSystemFontCollection");
            const UINT32 families = fonts.get()->GetFontFamilyCount();
            // The family of the character before is the first to be asked. What no family has is not worth many rounds.
            const UINT32 most_misses = 8 * families;
            for (UINT32 asked = 0; asked < families && misses < most_misses;
                 ++asked, ++misses, i = (i + 1) % families) {
                unique_com<IDWriteFontFamily> family;
                if (SUCCEEDED(fonts.get()->GetFontFamily(i, family.put())) &&
                    has_glyph(*family.get(), text[position], name)) {
                    layout_.get()->SetFontFamilyName(name.data(), {.startPosition = position, .length = 1});
                    break;
                }
            }
        }
    }

    drawing& means_;
    std::vector<link_mark> marks_; ///< the layout refers to them
    unique_com<IDWriteTextLayout> layout_;
};

} // namespace

std::unique_ptr<rich_layout> make_direct_layout(const rich_text& text, HFONT font)
try {
    drawing* const means = drawing::shared();
    if (!means)
        return nullptr;
    auto layout = std::make_unique<direct_layout>(*means, text, font);
    // Fails at once where no font can be had.
    layout->arrange(1);
    return layout;
} catch (const system_error& error) {
    log_failure({.code = error.code(), .context = error.what()});
    return nullptr;
}

} // namespace girder::ui
