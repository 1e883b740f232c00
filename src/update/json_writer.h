#pragma once

#include "serialisation/visitor.h"

#include <string>
#include <vector>

namespace girder::json {

/// Writes values as the members of one object, compactly, in UTF-8.
///
/// Dates are "%FT%T%z" in local time, GUIDs their braced form, bytes padded base64; a date that local time cannot
/// express and a positive infinity are null, for which the reader has no text. Of control characters only tab, line
/// feed and carriage return are escaped. The version of a structure is not kept.
class writer final : public nsm::value_writer {
public:
    writer();

    /// Ends the object. \return the text
    std::string finish();

    std::uint32_t capabilities() const noexcept override { return 0; }

    void write_date(nsm::value_name name, file_time value) override;
    void write_string(nsm::value_name name, std::u16string_view value) override;
    void write_guid(nsm::value_name name, const nsm::guid& value) override;
    void write_unsigned(nsm::value_name name, std::uint64_t value) override;
    void write_signed(nsm::value_name name, std::int64_t value) override;
    void write_double(nsm::value_name name, double value) override;
    void write_float(nsm::value_name name, float value) override;
    void write_boolean(nsm::value_name name, bool value) override;
    void write_null(nsm::value_name name) override;
    void begin_array(nsm::value_name name, std::uint32_t count) override;
    void end_array() override;
    void begin_structure(nsm::value_name name, std::uint32_t version) override;
    void end_structure() override;
    void write_binary(nsm::value_name name, std::span<const std::byte> value) override;

private:
    struct frame {
        char closing;
        bool has_items = false;
    };

    void begin_value(const nsm::value_name& name);
    void begin(const nsm::value_name& name, char opening, char closing);
    void end();
    void put_text(std::string_view text);
    template <typename Real>
    void write_real(const nsm::value_name& name, Real value);

    std::string out_;
    std::vector<frame> frames_;
};

} // namespace girder::json
