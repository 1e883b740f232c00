#pragma once

#include "format/compiled_format.h"
#include "format/error.h"

#include <string_view>

namespace fmtkit {

/// Compiles a format text that is known at run time only. The result refers to `text`.
/// \throws bad_extended_format_string, std::bad_alloc
CompiledFormat compile(std::u16string_view text);
NarrowCompiledFormat compile(std::string_view text);

} // namespace fmtkit
