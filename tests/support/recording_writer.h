#pragma once

#include "base/utf.h"
#include "serialisation/visitor.h"

#include <string>
#include <vector>

namespace support {

/// Writes down what a structure writes, one line for each value.
class recording_writer : public girder::nsm::value_writer {
public:
    explicit recording_writer(std::uint32_t capabilities) : capabilities_(capabilities) {}

    std::vector<std::string> lines;

    std::uint32_t capabilities() const noexcept override { return capabilities_; }
    void write_date(girder::nsm::value_name name, girder::file_time value) override
    {
        line(name, "date " + std::to_string(value.ticks));
    }
    void write_string(girder::nsm::value_name name, std::u16string_view value) override
    {
        line(name, "string " + girder::to_utf8(value));
    }
    void write_guid(girder::nsm::value_name name, const girder::nsm::guid&) override { line(name, "guid"); }
    void write_unsigned(girder::nsm::value_name name, std::uint64_t value) override
    {
        line(name, "unsigned " + std::to_string(value));
    }
    void write_signed(girder::nsm::value_name name, std::int64_t value) override
    {
        line(name, "signed " + std::to_string(value));
    }
    void write_double(girder::nsm::value_name name, double) override { line(name, "double"); }
    void write_float(girder::nsm::value_name name, float) override { line(name, "float"); }
    void write_boolean(girder::nsm::value_name name, bool value) override
    {
        line(name, value ? "boolean true" : "boolean false");
    }
    void write_null(girder::nsm::value_name name) override { line(name, "null"); }
    void begin_array(girder::nsm::value_name name, std::uint32_t count) override
    {
        line(name, "array " + std::to_string(count));
    }
    void end_array() override { lines.emplace_back("end"); }
    void begin_structure(girder::nsm::value_name name, std::uint32_t) override { line(name, "structure"); }
    void end_structure() override { lines.emplace_back("end"); }
    void write_binary(girder::nsm::value_name name, std::span<const std::byte> value) override
    {
        std::string bytes = "binary";
        for (const std::byte each : value)
            bytes += ' ' + std::to_string(std::to_integer<int>(each));
        line(name, bytes);
    }

private:
    void line(girder::nsm::value_name name, const std::string& value)
    {
        lines.push_back(std::string(name.text) + ": " + value);
    }

    std::uint32_t capabilities_;
};

} // namespace support
