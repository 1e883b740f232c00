#include "update/json_writer.h"

#include "base/utf.h"
#include "format/format.h"
#include "format/literals.h"
#include "serialisation/guid_text.h"
#include "serialisation/real_text.h"
#include "update/base64.h"
#include "update/json_escapes.h"

#include <cmath>
#include <limits>

namespace girder::json {

using namespace fmtkit::literals;

writer::writer()
{
    out_ += '{';
    frames_.push_back({.closing = '}'});
}

std::string writer::finish()
{
    end();
    return std::move(out_);
}

void writer::begin_value(const nsm::value_name& name)
{
    frame& innermost = frames_.back();
    if (innermost.has_items)
        out_ += ',';
    innermost.has_items = true;
    if (innermost.closing == ']')
        return;
    put_text(fmtkit::format("{0}{2?<}@{1}{2?>}"_fmt, name.text, name.suffix(), name.suffix() != 0));
    out_ += ':';
}

void writer::put_text(std::string_view text)
{
    out_ += '"';
    append_escaped(out_, text);
    out_ += '"';
}

void writer::begin(const nsm::value_name& name, char opening, char closing)
{
    begin_value(name);
    out_ += opening;
    frames_.push_back({.closing = closing});
}

void writer::end()
{
    out_ += frames_.back().closing;
    frames_.pop_back();
}

void writer::write_date(nsm::value_name name, file_time value)
{
    const std::string text = fmtkit::format("{t(%FT%T%z)}"_fmt, value);
    if (text.empty()) {
        write_null(name);
        return;
    }
    begin_value(name);
    put_text(text);
}

void writer::write_string(nsm::value_name name, std::u16string_view value)
{
    begin_value(name);
    put_text(to_utf8(value));
}

void writer::write_guid(nsm::value_name name, const nsm::guid& value)
{
    begin_value(name);
    put_text(to_utf8(to_text(value)));
}

void writer::write_unsigned(nsm::value_name name, std::uint64_t value)
{
    begin_value(name);
    fmtkit::append(out_, "{}"_fmt, value);
}

void writer::write_signed(nsm::value_name name, std::int64_t value)
{
    begin_value(name);
    fmtkit::append(out_, "{}"_fmt, value);
}

template <typename Real>
void writer::write_real(const nsm::value_name& name, Real value)
{
    if (value == std::numeric_limits<Real>::infinity()) {
        write_null(name);
        return;
    }
    begin_value(name);
    // The reader takes a number by its first character, which must not be a letter.
    out_ += std::isnan(value) ? "-nan" : to_utf8(nsm::to_text(value));
}

void writer::write_double(nsm::value_name name, double value)
{
    write_real(name, value);
}

void writer::write_float(nsm::value_name name, float value)
{
    write_real(name, value);
}

void writer::write_boolean(nsm::value_name name, bool value)
{
    begin_value(name);
    out_ += value ? "true" : "false";
}

void writer::write_null(nsm::value_name name)
{
    begin_value(name);
    out_ += "null";
}

void writer::begin_array(nsm::value_name name, std::uint32_t /*count*/)
{
    begin(name, '[', ']');
}

void writer::end_array()
{
    end();
}

void writer::begin_structure(nsm::value_name name, std::uint32_t /*version*/)
{
    begin(name, '{', '}');
}

void writer::end_structure()
{
    end();
}

void writer::write_binary(nsm::value_name name, std::span<const std::byte> value)
{
    begin_value(name);
    out_ += '"';
    out_ += to_base64(value);
    out_ += '"';
}

} // namespace girder::json
