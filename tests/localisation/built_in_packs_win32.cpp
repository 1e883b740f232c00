#include "built_in_packs.h"
#include "localisation/string_tables.h"

void support::load_built_in_packs()
{
    tidelink::initialise(u"", u"en");
}
