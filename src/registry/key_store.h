#pragma once

#include "base/handles.h"
#include "base/system_error.h"
#include "registry/value_reader.h"
#include "registry/value_writer.h"

#include <windows.h>

#include <memory>
#include <string>

namespace girder::registry_ex {

struct store_options {
    /// Kernel transaction on which every key is created; null for none. Owned by the caller.
    HANDLE transaction = nullptr;
    /// Raises the capability word by 4.
    bool option_a = false;
    /// A null written outside an array deletes the value.
    bool delete_on_null = false;
};

/// One key of the registry as a place to write a structure to and read it from. Holds at most the key that it is read
/// from; one thread.
class RegistryKeyStore {
public:
    /// \param hive  a predefined key
    /// \param path  of the key below it
    RegistryKeyStore(HKEY hive, std::u16string path, store_options options) noexcept;

    /// The capability word: 19, plus 4 with option A, plus 8 without delete-on-null.
    std::uint32_t capabilities() const noexcept;

    /// Opens the key, creating it when it is missing, and hands out a reader over it. The reader lives until the store
    /// is opened again or destroyed.
    /// \throws system_error
    const RegistryValueReader& open_for_reading();

    /// Closes the key if it was open for reading, opens it for reading and writing, creating it when it is missing, and
    /// hands out a writer that owns it.
    /// \throws system_error
    std::unique_ptr<RegistryValueWriter> open_for_writing();

private:
    unique_registry_key open(REGSAM access) const;

    HKEY hive_;
    std::u16string path_;
    store_options options_;
    std::unique_ptr<RegistryValueReader> reader_;
};

} // namespace girder::registry_ex
