#include "base/utf.h"
#include "harness.h"
#include "update/manifest.h"

#include <rapidjson/document.h>
#include <simdjson.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A manifest from its UTF-8 text into the record with UTF-16 texts. Everyone widens texts of ASCII and converts the
// others with to_utf16(); the documents are in memory, so simdjson copies them first for the padding that it needs.

namespace {

using bench::participant;
using bench::random_source;
using namespace tidelink;

std::string document;
Manifest expected;
Manifest read;

// Documents

enum class member_order { schema, reverse, shuffled_among_unknown };

/// Writes an object with its members in the wanted order.
std::string object(random_source& random, member_order order, std::vector<std::string> members)
{
    if (order == member_order::reverse)
        std::ranges::reverse(members);
    if (order == member_order::shuffled_among_unknown) {
        members.emplace_back(R"("Comment":"not known to this \"program\" yet")");
        members.emplace_back(R"("History":[{"Date":"2024-01-01","Size":1024,"Notes":["a","b"]},null,true,-1.5])");
        std::ranges::shuffle(members, random);
    }
    std::string text = "{";
    for (const std::string& member : members)
        text.append(text.size() > 1 ? "," : "").append(member);
    return text + "}";
}

std::string word(random_source& random, std::size_t shortest, std::size_t longest)
{
    std::string text;
    for (auto left = std::uniform_int_distribution(shortest, longest)(random); left > 0; --left)
        text += static_cast<char>('a' + std::uniform_int_distribution(0, 25)(random));
    return text;
}

std::string text_member(const char* name, const std::string& value)
{
    return std::string("\"") + name + "\":\"" + value + "\"";
}

std::string number_member(const char* name, std::uint32_t value)
{
    return std::string("\"") + name + "\":" + std::to_string(value);
}

std::string pack(random_source& random, member_order order)
{
    std::string credits;
    for (auto left = std::uniform_int_distribution(1, 3)(random); left > 0; --left) {
        const std::string credit =
            object(random, order,
                   {text_member("Name", word(random, 4, 8) + " \xC3\x89" + word(random, 4, 12)),
                    text_member("EMail", word(random, 4, 12) + "@" + word(random, 5, 10) + ".example")});
        credits += (credits.empty() ? "" : ",") + credit;
    }
    return object(random, order,
                  {text_member("Name", word(random, 5, 12) + " (" + word(random, 5, 10) + ")"),
                   text_member("Locale", word(random, 2, 2) + "-" + word(random, 2, 2)),
                   number_member("Version", std::uniform_int_distribution(1U, 99U)(random)),
                   number_member("ClientVersion", std::uniform_int_distribution(700000000U, 799999999U)(random)),
                   "\"Credits\":[" + credits + "]"});
}

std::string manifest_text(random_source& random, member_order order, std::size_t size)
{
    std::string packs;
    while (packs.size() < size)
        packs += (packs.empty() ? "" : ",") + pack(random, order);
    return object(
        random, order,
        {number_member("Version", 701011700),
         "\"Promo\":" + object(random, order,
                               {text_member("Title", "Half the price until Midsummer \xE2\x80\x93 for two ports"),
                                text_member("Url", "https://www.vendor.example/midsummer"),
                                text_member("ExpiresOn", "2025-06-25T00:00:00")}),
         "\"LanguagePacks\":[" + packs + "]"});
}

// Everyone's way to the record. The date is read by ours alone: it is the same text once in each document.

constexpr day_number last_day{155'038};

/// As ours does it: what is ASCII is only widened.
std::u16string utf16_of(std::string_view text)
{
    unsigned char bits = 0;
    for (const char byte : text)
        bits |= static_cast<unsigned char>(byte);
    return bits < 0x80 ? std::u16string(text.begin(), text.end()) : girder::to_utf16(text);
}

Manifest by_on_demand(const std::string& text)
{
    namespace od = simdjson::ondemand;
    thread_local od::parser parser;
    const simdjson::padded_string padded(text);
    od::document parsed = parser.iterate(padded);
    od::object root = parsed.get_object();
    const auto text_of = [](auto&& value) { return utf16_of(std::string_view(value.get_string())); };
    Manifest manifest;
    manifest.version = static_cast<std::uint32_t>(std::uint64_t(root["Version"]));
    od::object promo = root["Promo"].get_object();
    manifest.promo.emplace();
    manifest.promo->title = text_of(promo["Title"]);
    manifest.promo->url = text_of(promo["Url"]);
    manifest.promo->expires_on = last_day;
    manifest.language_packs.emplace();
    for (od::object each : root["LanguagePacks"].get_array()) {
        OfferedPack& into = manifest.language_packs->emplace_back();
        into.name = text_of(each["Name"]);
        into.locale = text_of(each["Locale"]);
        into.version = static_cast<std::uint32_t>(std::uint64_t(each["Version"]));
        into.client_version = static_cast<std::uint32_t>(std::uint64_t(each["ClientVersion"]));
        for (od::object credit : each["Credits"].get_array()) {
            Credit& person = into.credits.emplace_back();
            person.name = text_of(credit["Name"]);
            person.email = text_of(credit["EMail"]);
        }
    }
    return manifest;
}

/// The record from a tree of any library; `Access` says how members, elements, texts and numbers are reached.
template <typename Access, typename Node>
Manifest from_tree(const Node& root)
{
    Manifest manifest;
    manifest.version = Access::number(Access::member(root, "Version"));
    const auto& promo = Access::member(root, "Promo");
    manifest.promo =
        Promo{Access::text(Access::member(promo, "Title")), Access::text(Access::member(promo, "Url")), last_day};
    manifest.language_packs.emplace();
    for (const auto& each : Access::elements(Access::member(root, "LanguagePacks"))) {
        OfferedPack& into = manifest.language_packs->emplace_back();
        into.name = Access::text(Access::member(each, "Name"));
        into.locale = Access::text(Access::member(each, "Locale"));
        into.version = Access::number(Access::member(each, "Version"));
        into.client_version = Access::number(Access::member(each, "ClientVersion"));
        for (const auto& credit : Access::elements(Access::member(each, "Credits"))) {
            Credit& person = into.credits.emplace_back();
            person.name = Access::text(Access::member(credit, "Name"));
            person.email = Access::text(Access::member(credit, "EMail"));
        }
    }
    return manifest;
}

struct dom_access {
    using node = simdjson::dom::element;
    static node member(node from, const char* name) { return from[name]; }
    static simdjson::dom::array elements(node from) { return from.get_array(); }
    static std::u16string text(node from) { return utf16_of(std::string_view(from.get_string())); }
    static std::uint32_t number(node from) { return static_cast<std::uint32_t>(std::uint64_t(from)); }
};

Manifest by_dom(const std::string& text)
{
    thread_local simdjson::dom::parser parser;
    const simdjson::dom::element root = parser.parse(text);
    return from_tree<dom_access>(root);
}

struct rapidjson_access {
    using node = rapidjson::Value;
    static const node& member(const node& from, const char* name) { return from[name]; }
    static auto elements(const node& from) { return from.GetArray(); }
    static std::u16string text(const node& from)
    {
        return utf16_of(std::string_view(from.GetString(), from.GetStringLength()));
    }
    static std::uint32_t number(const node& from) { return from.GetUint(); }
};

Manifest by_rapidjson(const std::string& text)
{
    rapidjson::Document root;
    root.Parse(text.data(), text.size());
    return from_tree<rapidjson_access>(static_cast<const rapidjson::Value&>(root));
}

struct nlohmann_access {
    using node = nlohmann::json;
    static const node& member(const node& from, const char* name) { return from[name]; }
    static const node& elements(const node& from) { return from; }
    static std::u16string text(const node& from) { return utf16_of(from.get_ref<const std::string&>()); }
    static std::uint32_t number(const node& from) { return from.get<std::uint32_t>(); }
};

Manifest by_nlohmann(const std::string& text)
{
    const nlohmann::json root = nlohmann::json::parse(text);
    return from_tree<nlohmann_access>(root);
}

Manifest by_ours(const std::string& text)
{
    return read_manifest(text);
}

participant reads(std::string name, Manifest (*way)(const std::string&))
{
    return {.name = std::move(name),
            .run = [way] { read = way(document); },
            .is_right = [way] { return way(document) == expected; }};
}

constexpr std::size_t kilobyte = 1024;

/// Documents of that size and order, whose right record is what the slowest and plainest peer reads.
std::function<void(random_source&)> draws(member_order order, std::size_t size)
{
    return [order, size](random_source& random) {
        document = manifest_text(random, order, size);
        expected = by_nlohmann(document);
    };
}

void compare(bench::report& report, const char* title, std::size_t size, int rounds)
{
    const participant ours = reads("manifest reader", by_ours);
    const participant on_demand = reads("simdjson On-Demand", by_on_demand);
    const participant dom = reads("simdjson DOM", by_dom);
    const std::vector<participant> trees = {reads("rapidjson", by_rapidjson), reads("nlohmann", by_nlohmann)};
    const auto row = [&](const char* order, double goal, std::vector<participant> peers, member_order members) {
        report.compare({.work = std::string(title) + ", " + order,
                        .goal = goal,
                        .subject = ours,
                        .peers = std::move(peers),
                        .draw = draws(members, size),
                        .checked_draws = 3,
                        .rounds = rounds});
    };
    row("schema order", 1.0, {on_demand}, member_order::schema);
    row("shuffled among unknown members", 1 / 1.1, {on_demand, dom}, member_order::shuffled_among_unknown);
    row("schema order, other libraries", 0, trees, member_order::schema);
    row("shuffled, other libraries", 0, trees, member_order::shuffled_among_unknown);
}

/// The same record, its members once in schema order and once reversed.
void compare_orders(bench::report& report, const char* title, std::size_t size, int rounds)
{
    static std::string in_order;
    report.compare({.work = std::string(title) + ", reverse order beside schema order",
                    .goal = 1.5,
                    .subject = reads("manifest reader, reverse", by_ours),
                    .peers = {{.name = "manifest reader, in order",
                               .run = [] { read = read_manifest(in_order); },
                               .is_right = [] { return read_manifest(in_order) == expected; }}},
                    .draw =
                        [size](random_source& random) {
                            random_source same = random;
                            in_order = manifest_text(same, member_order::schema, size);
                            document = manifest_text(random, member_order::reverse, size);
                            expected = by_nlohmann(document);
                        },
                    .checked_draws = 3,
                    .rounds = rounds});
}

} // namespace

int main()
{
    bench::report report("Manifest");
    compare(report, "6 KB", 6 * kilobyte, 301);
    compare_orders(report, "6 KB", 6 * kilobyte, 301);
    compare(report, "1 MB", kilobyte * kilobyte, 31);
    compare_orders(report, "1 MB", kilobyte * kilobyte, 31);
    return report.exit_code();
}
