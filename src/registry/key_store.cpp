#include "registry/key_store.h"

#include "base/win32_error.h"
#include "registry/create_key.h"

#include <utility>

namespace girder::registry_ex {

RegistryKeyStore::RegistryKeyStore(HKEY hive, std::u16string path, store_options options) noexcept
    : hive_(hive), path_(std::move(path)), options_(options)
{}

std::uint32_t RegistryKeyStore::capabilities() const noexcept
{
    return (options_.option_a ? 23U : 19U) + (options_.delete_on_null ? 0U : 8U);
}

const RegistryValueReader& RegistryKeyStore::open_for_reading()
{
    if (!reader_)
        reader_ = std::make_unique<RegistryValueReader>(open(KEY_READ), capabilities());
    return *reader_;
}

std::unique_ptr<RegistryValueWriter> RegistryKeyStore::open_for_writing()
{
    reader_.reset();
    const RegistryValueWriter::options options{
        .transaction = options_.transaction, .delete_on_null = options_.delete_on_null, .capabilities = capabilities()};
    return std::make_unique<RegistryValueWriter>(open(KEY_READ | KEY_WRITE), options);
}

unique_registry_key RegistryKeyStore::open(REGSAM access) const
{
    unique_registry_key key;
    const LSTATUS status = create_key(hive_, path_.c_str(), access, options_.transaction, key);
    if (status != ERROR_SUCCESS)
        throw_win32(static_cast<DWORD>(status), options_.transaction ? "RegCreateKeyTransactedW" : "RegCreateKeyExW");
    return key;
}

} // namespace girder::registry_ex
