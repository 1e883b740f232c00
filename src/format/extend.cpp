#include "format/extend.h"

namespace fmtkit::details {
namespace {

template <typename Char>
Char* extended(std::basic_string<Char>& out, std::size_t units)
{
    const std::size_t size = out.size();
    out.resize_and_overwrite(size + units, [=](Char*, std::size_t) { return size + units; });
    return out.data() + size;
}

} // namespace

char* extend(std::string& out, std::size_t units)
{
    return extended(out, units);
}

char16_t* extend(std::u16string& out, std::size_t units)
{
    return extended(out, units);
}

} // namespace fmtkit::details
