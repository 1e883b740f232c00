#include "format/format.h"
#include "format/literals.h"

using namespace fmtkit::literals;

std::u16string twin(int message)
{
    return fmtkit::format(u"Error {0" LETTER "}"_fmt, message);
}
