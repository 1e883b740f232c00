#include "registry/stored_value.h"
#include "serialisation/load_exception.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// The first byte is the registry type, the rest the value's data.

namespace {

template <typename Read>
void attempt(Read read)
{
    try {
        static_cast<void>(read());
    } catch (const girder::nsm::details::load_exception&) {
        // A refusal is an outcome like any other.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    if (size == 0)
        return 0;
    girder::registry_ex::stored_value value{.type = input[0], .data = std::vector<std::byte>(size - 1)};
    if (size > 1)
        std::memcpy(value.data.data(), input + 1, size - 1);
    attempt([&] { return value.as_string(); });
    attempt([&] { return value.as_boolean(); });
    attempt([&] { return value.as_unsigned(); });
    attempt([&] { return value.as_signed(); });
    attempt([&] { return value.as_double(); });
    attempt([&] { return value.as_float(); });
    attempt([&] { return value.as_date(); });
    attempt([&] { return value.as_guid(); });
    attempt([&] { return value.as_binary(); });
    return 0;
}
