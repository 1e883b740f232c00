#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace girder::ui {

/// How a stretch of text looks.
struct text_style {
    bool bold = false;
    int percent = 100; ///< of the size of the surrounding window's font
    int link = -1;     ///< index of the address that it leads to; -1 for none

    bool operator==(const text_style&) const = default;
};

struct text_run {
    std::size_t begin = 0; ///< in UTF-16 code units
    std::size_t length = 0;
    text_style style;

    bool operator==(const text_run&) const = default;
};

/// Text with its looks. The runs lie one behind the other, none is empty, neighbours differ, and together they cover
/// the text.
struct rich_text {
    std::u16string text; ///< lines end with '\n'
    std::vector<text_run> runs;
    std::vector<std::u16string> addresses; ///< of the links, in the order of the text

    /// The text of a link, without its looks.
    std::u16string link_text(int link) const;
};

/// Reads markup, whatever it holds:
///
///     [[[bTEXT]]]              bold
///     [[[s:120:TEXT]]]         size in percent, 25 to 400
///     [[[hADDRESS]]]           a link that shows its address
///     [[[hADDRESS|TEXT]]]      a link that shows a text; its address where that is empty
///     [[[( and [[[)            the brackets [ and ] themselves
///
/// Marks nest; the innermost size counts, and there is no link within a link. What is none of these, what is not closed
/// and what closes nothing is shown as it stands, a link whose address is_safe_address() refuses, too. Carriage returns
/// and nulls are left out.
rich_text parse_markup(std::u16string_view markup);

/// The markup that shows exactly this text, wherever it is put into other markup.
std::u16string escaped_markup(std::u16string_view text);

/// The markup of a link that shows a plain text. Empty for an address that no link may lead to.
std::u16string link_markup(std::u16string_view address, std::u16string_view text);

/// Whether an address may be handed to the system's shell: https or mailto, in visible ASCII (RFC 3986) without
/// quotation marks. Any other text could start a program.
bool is_safe_address(std::u16string_view address) noexcept;

} // namespace girder::ui
