#include "localisation/pack_name_hash.h"
#include "string_ids.h"

namespace tidelink {
namespace {

static_assert(PackNameHash(u"") == 0x811C9DC5);
static_assert(PackNameHash(u"OK") == 0x663437AF);
static_assert(PackNameHash(u"Do not display this message anymore") == 0xECCFB729);

// A to Z fold, nothing else does.
static_assert(PackNameHash(u"TL_SERVER_CONFIG.EXE") == PackNameHash(u"tl_server_config.exe"));
static_assert(PackNameHash(u"\u00C4") != PackNameHash(u"\u00E4"));

// Of a unit only the low byte counts, sign-extended: FF FF FF xx from 0x80 on.
static_assert(PackNameHash(u"\u0080") == (0x811C9DC5U ^ 0xFFFFFF80U) * 0x01000193U);
static_assert(PackNameHash(u"\u2026") == (0x811C9DC5U ^ 0x26U) * 0x01000193U);

static_assert(module_name_hash(u"C:\\Tools\\a.exe") == PackNameHash(u"Tools\\a.exe"));
static_assert(module_name_hash(u"folder\\a.exe") == PackNameHash(u"A.EXE"));

// The compiler of the texts hashes as the program does.
#define STRING_KEY(name, key) static_assert(string_id::name == PackNameHash(key));
#define STRING_WITH_OWN_ID(name, key)
#include "string_keys.inc"
#undef STRING_WITH_OWN_ID
#undef STRING_KEY

static_assert(string_id::update_offer == 0x7D3C765F);

} // namespace
} // namespace tidelink
