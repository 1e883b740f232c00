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

} // namespace

product_version read_product_version()
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
    return {HIWORD(info.dwProductVersionMS), LOWORD(info.dwProductVersionMS), HIWORD(info.dwProductVersionLS),
            LOWORD(info.dwProductVersionLS)};
}

} // namespace girder
