#include "base/product_version.h"
#include "base/system_library.h"

#include <cstddef>
#include <vector>

namespace girder {
namespace {

/// A copy: VerQueryValueW may write to the block that it is given, and a resource is read-only memory.
std::vector<std::byte> version_resource()
{
    const HRSRC place = ::FindResourceW(nullptr, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    const HGLOBAL resource = place ? ::LoadResource(nullptr, place) : nullptr;
    const void* data = resource ? ::LockResource(resource) : nullptr;
    if (!data)
        return {};
    const auto* bytes = static_cast<const std::byte*>(data);
    return {bytes, bytes + ::SizeofResource(nullptr, place)};
}

/// The numbers that stand in two members of the fixed block.
product_version read_version(DWORD VS_FIXEDFILEINFO::* upper, DWORD VS_FIXEDFILEINFO::* lower)
{
    const std::vector<std::byte> block = version_resource();
    if (block.empty())
        return {};
    const system_library version_dll(u"version.dll");
    const auto query_value = version_dll.function<decltype(::VerQueryValueW)>("VerQueryValueW");
    void* found = nullptr;
    UINT size = 0;
    if (!query_value(block.data(), L"\\", &found, &size) || size < sizeof(VS_FIXEDFILEINFO))
        return {};
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return {HIWORD(info.*upper), LOWORD(info.*upper), HIWORD(info.*lower), LOWORD(info.*lower)};
}

} // namespace

product_version read_product_version()
{
    return read_version(&VS_FIXEDFILEINFO::dwProductVersionMS, &VS_FIXEDFILEINFO::dwProductVersionLS);
}

product_version read_file_version()
{
    return read_version(&VS_FIXEDFILEINFO::dwFileVersionMS, &VS_FIXEDFILEINFO::dwFileVersionLS);
}

} // namespace girder
