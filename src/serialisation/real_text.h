#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace girder::nsm {

/// The shortest decimal text that reads back as the same value: "0.1", "1000", "1e+22", "-inf", "nan"; of a text with
/// and one without an exponent that are equally long, the one without.
std::u16string to_text(double value);
std::u16string to_text(float value);

/// The nearest value. Empty when the text is not wholly a decimal number, or out of range.
template <typename Real>
std::optional<Real> parse_real(std::string_view text);

} // namespace girder::nsm
