#pragma once

#include <exception>

namespace fmtkit {

/// Base of what the formatting library raises.
class generic_exception : public std::exception {};

/// A format text that does not follow the grammar. Carries no text of its own.
class bad_extended_format_string : public generic_exception {
public:
    const char* what() const noexcept override { return "bad extended format string"; }
};

} // namespace fmtkit
