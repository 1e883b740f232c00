// Looking up texts by id and loading packs, beside boost::unordered_flat_map, an array, and the least that any reader
// of a pack has to do. Ids, texts and queries are drawn anew in every run; every participant's result is checked before
// it is timed; the participants take turns, and the figure is the median ratio of the turns.

#include "localisation/little_endian.h"
#include "localisation/pack_name_hash.h"
#include "localisation/string_tables.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/unordered/unordered_flat_map.hpp>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace tidelink;
using pack_bytes = std::vector<std::byte>;

std::mt19937 draw{std::random_device{}()};

std::size_t draw_below(std::size_t limit)
{
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(draw);
}

// ------------------------------------------------------------------------------------------------------- measuring

constexpr int turns = 41;

void require(bool holds, const char* row)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s: a participant's result is wrong\n", row);
    std::exit(1);
}

template <typename Work>
double nanoseconds(const Work& work)
{
    const auto start = std::chrono::steady_clock::now();
    const std::size_t result = work();
    const auto end = std::chrono::steady_clock::now();
    asm volatile("" : : "r"(result) : "memory");
    return std::chrono::duration<double, std::nano>(end - start).count();
}

template <typename Values>
double median(Values values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Both works have to return `golden`. The times are for one of `operations`.
template <typename Ours, typename Peer>
bool compare(const char* row, const char* peer_name, double limit, std::size_t operations, std::size_t golden,
             const Ours& ours, const Peer& peer)
{
    require(ours() == golden && peer() == golden, row);
    std::array<double, turns> ours_times{};
    std::array<double, turns> peer_times{};
    std::array<double, turns> ratios{};
    for (std::size_t turn = 0; turn < turns; ++turn) {
        if (turn % 2 == 0) {
            ours_times[turn] = nanoseconds(ours);
            peer_times[turn] = nanoseconds(peer);
        } else {
            peer_times[turn] = nanoseconds(peer);
            ours_times[turn] = nanoseconds(ours);
        }
        ratios[turn] = ours_times[turn] / peer_times[turn];
    }
    const double ratio = median(ratios);
    const auto each = static_cast<double>(operations);
    std::printf("%-46s %-28s %10.2f ns %10.2f ns   ratio %.2f   limit %.2f%s\n", row, peer_name,
                median(ours_times) / each, median(peer_times) / each, ratio, limit, ratio <= limit ? "" : "   MISSED");
    return ratio <= limit;
}

// ----------------------------------------------------------------------------------------------------------- packs

template <typename Number>
void append(pack_bytes& pack, Number number)
{
    const auto* const first = reinterpret_cast<const std::byte*>(&number);
    pack.insert(pack.end(), first, first + sizeof number);
}

struct entry_source {
    std::uint32_t id;
    std::u16string text;
};

constexpr std::size_t header_size = 18;

pack_bytes pack_of(const entry_source* first, std::size_t count)
{
    pack_bytes pack;
    append(pack, std::uint16_t{3});
    for (const char character : {'E', 'N', 'U', '\0'})
        append(pack, character);
    append(pack, std::uint16_t{2});
    for (const char character : {'e', 'n', '\0'})
        append(pack, character);
    append(pack, std::uint8_t{2});
    append(pack, std::uint16_t{0});
    append(pack, static_cast<std::uint32_t>(count));
    for (const entry_source* entry = first; entry != first + count; ++entry) {
        append(pack, entry->id);
        append(pack, std::uint32_t{0});
        append(pack, static_cast<std::uint16_t>(entry->text.size()));
        for (const char16_t unit : entry->text)
            append(pack, unit);
        append(pack, char16_t{0});
    }
    return pack;
}

/// Entries with ids of keys as long as those of the program, and texts of 1 to 60 units.
std::vector<entry_source> draw_entries(std::size_t count)
{
    boost::unordered_flat_map<std::uint32_t, bool> taken;
    std::vector<entry_source> entries;
    while (entries.size() < count) {
        std::u16string key(6 + draw_below(30), u' ');
        for (char16_t& unit : key)
            unit = static_cast<char16_t>(u'a' + draw_below(26));
        if (taken.emplace(PackNameHash(key), true).second)
            entries.push_back({PackNameHash(key), std::u16string(1 + draw_below(60), u'x')});
    }
    return entries;
}

// --------------------------------------------------------------------------------------------------------- look-up

/// What another reader of packs would keep for an id.
struct plain_entry {
    std::uint32_t revision;
    std::u16string_view text;
};

/// The same entries in a table of several layers and in a map, and ids to ask both for.
struct look_up {
    look_up(std::size_t count, std::size_t layers, std::size_t asked)
    {
        const std::vector<entry_source> entries = draw_entries(count);
        for (std::size_t layer = 0; layer < layers; ++layer) {
            packs.push_back(pack_of(&entries[layer * count / layers], count / layers));
            table.layer(packs.back(), pack_form::bare);
        }
        for (const entry_source& entry : entries) {
            const StringEntry& found = table.find(entry.id);
            map.emplace(entry.id, plain_entry{found.revision(), found.text()});
        }
        for (std::size_t left = asked; left > 0; --left) {
            const entry_source& entry = entries[draw_below(entries.size())];
            ids.push_back(entry.id);
            golden += entry.text.size();
        }
    }

    std::size_t ask_table() const
    {
        std::size_t sum = 0;
        for (const std::uint32_t id : ids)
            sum += table.find(id).text().size();
        return sum;
    }

    std::size_t ask_map() const
    {
        std::size_t sum = 0;
        for (const std::uint32_t id : ids)
            sum += map.find(id)->second.text.size();
        return sum;
    }

    std::vector<pack_bytes> packs;
    StringTable table;
    boost::unordered_flat_map<std::uint32_t, plain_entry> map;
    std::vector<std::uint32_t> ids;
    std::size_t golden = 0;
};

/// Over several draws of ids: how many of them collide by chance differs from draw to draw.
bool bench_find(const char* row, std::size_t count, std::size_t layers, std::size_t draws)
{
    constexpr std::size_t asked = 16'384;
    std::vector<std::unique_ptr<look_up>> cases;
    std::size_t golden = 0;
    for (std::size_t left = draws; left > 0; --left) {
        cases.push_back(std::make_unique<look_up>(count, layers, asked));
        golden += cases.back()->golden;
    }
    const auto over_all = [&](auto ask) {
        return [&cases, ask] {
            std::size_t sum = 0;
            for (const auto& one : cases)
                sum += ((*one).*ask)();
            return sum;
        };
    };
    return compare(row, "boost::unordered_flat_map", 1.0, draws * asked, golden, over_all(&look_up::ask_table),
                   over_all(&look_up::ask_map));
}

// ------------------------------------------------------------------------------------------------------- constants

std::array<std::u16string_view, string_slot::count> plain_array;

/// Keeps the compiler from joining several uses of a text, and from knowing it the next time.
std::size_t use(std::u16string_view text)
{
    std::size_t size = text.size();
    const char16_t* data = text.data();
    asm volatile("" : "+r"(size), "+r"(data) : : "memory");
    return size;
}

/// Eight constant ids, as many times as asked, each fetched by a function of the id.
template <typename Fetch>
std::size_t fetch_constants(const Fetch& fetch, std::size_t times)
{
    std::size_t sum = 0;
    for (; times > 0; --times) {
        sum += use(fetch.template operator()<string_id::ok>());
        sum += use(fetch.template operator()<string_id::cancel>());
        sum += use(fetch.template operator()<string_id::settings>());
        sum += use(fetch.template operator()<string_id::apply>());
        sum += use(fetch.template operator()<string_id::security>());
        sum += use(fetch.template operator()<string_id::retry>());
        sum += use(fetch.template operator()<string_id::operation_error>());
        sum += use(fetch.template operator()<string_id::update_offer>());
    }
    return sum;
}

bool bench_constants()
{
    std::vector<entry_source> entries;
    for (const std::uint32_t id : string_slot::ids)
        entries.push_back({id, std::u16string(1 + draw_below(60), u'x')});
    const pack_bytes bare = pack_of(entries.data(), entries.size());
    constexpr std::array<int, 16> signature = {0x79, 0x2B, 0x13, 0xEF, 0xBB, 0x4F, 0xF7, 0x43,
                                               0x84, 0x1A, 0x26, 0x0C, 0x00, 0xFF, 0x99, 0x29};
    pack_bytes common;
    for (const int value : signature)
        common.push_back(static_cast<std::byte>(value));
    common.insert(common.end(), bare.begin(), bare.end());
    build_string_tables({.common = common, .program = {}, .common_translation = {}, .program_translation = {}});

    std::size_t golden = 0;
    for (std::size_t slot = 0; slot < string_slot::count; ++slot)
        plain_array[slot] = program_strings().text(string_slot::ids[slot]);
    for (const std::uint32_t id :
         {string_id::ok, string_id::cancel, string_id::settings, string_id::apply, string_id::security,
          string_id::retry, string_id::operation_error, string_id::update_offer})
        golden += entries[string_slot::of(id)].text.size();

    constexpr std::size_t times = 20'000;
    const auto by_id = []<std::uint32_t id>() { return text(id); };
    const auto by_index = []<std::uint32_t id>() { return plain_array[string_slot::of(id)]; };
    return compare(
        "text of a constant id", "array index", 2.0, 8 * times, golden * times,
        [&] { return fetch_constants(by_id, times); }, [&] { return fetch_constants(by_index, times); });
}

// --------------------------------------------------------------------------------------------------------- loading

/// A file, mapped while the object lives.
class mapping {
public:
    explicit mapping(const char* path)
    {
        const int file = ::open(path, O_RDONLY | O_CLOEXEC);
        struct stat status{};
        ::fstat(file, &status);
        size_ = static_cast<std::size_t>(status.st_size);
        address_ = ::mmap(nullptr, size_, PROT_READ, MAP_SHARED, file, 0);
        ::close(file);
        require(address_ != MAP_FAILED, "mapping");
    }
    ~mapping() { ::munmap(address_, size_); }
    mapping(const mapping&) = delete;
    mapping& operator=(const mapping&) = delete;

    std::span<const std::byte> bytes() const { return {static_cast<const std::byte*>(address_), size_}; }

private:
    void* address_ = nullptr;
    std::size_t size_ = 0;
};

/// Goes from entry to entry of a pack, the least that a reader has to do; the sum of all lengths.
std::size_t walk_headers(std::span<const std::byte> pack)
{
    const std::byte* entry = pack.data() + header_size;
    std::size_t sum = 0;
    for (auto left = load_number<std::uint32_t>(entry - sizeof(std::uint32_t)); left > 0; --left) {
        if ((load_number<std::uint32_t>(entry + 4) & 3U) != 0)
            return 0;
        const std::size_t length = load_number<std::uint16_t>(entry + 8);
        sum += length;
        entry += 12 + 2 * length;
    }
    return sum;
}

/// \param beneath  how many entries the layer beneath has, all with other ids
bool bench_load(const char* row, std::size_t beneath)
{
    constexpr std::size_t count = 10'000;
    constexpr std::size_t times = 8;
    const std::vector<entry_source> entries = draw_entries(count + beneath);
    const pack_bytes pack = pack_of(entries.data(), count);
    const pack_bytes lower_pack = pack_of(entries.data() + count, beneath);
    StringTable lower;
    lower.layer(lower_pack, pack_form::bare);
    std::size_t golden = 0;
    for (std::size_t at = 0; at < count; ++at)
        golden += entries[at].text.size();

    const std::string path = "/tmp/strings_bench." + std::to_string(::getpid());
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    require(file != nullptr && std::fwrite(pack.data(), 1, pack.size(), file) == pack.size(), row);
    std::fclose(file);

    const auto repeat = [](const auto& once) {
        return [&once] {
            std::size_t result = 0;
            for (std::size_t left = times; left > 0; --left)
                result += once();
            return result;
        };
    };
    const auto load = [&] {
        const mapping mapped(path.c_str());
        StringTable table = StringTable::above(lower);
        table.layer(mapped.bytes(), pack_form::bare);
        require(table.find_or_null(entries[count / 2].id) != nullptr, row);
        return golden;
    };
    const auto walk = [&] {
        const mapping mapped(path.c_str());
        return walk_headers(mapped.bytes());
    };
    const auto check = [&] {
        const mapping mapped(path.c_str());
        StringTable table = StringTable::above(lower);
        table.layer(mapped.bytes(), pack_form::bare);
        for (std::size_t at = 0; at < count; ++at)
            require(table.text(entries[at].id) == entries[at].text, row);
    };
    check();
    const bool met =
        compare(row, "mapping and walking headers", 1.35, times * count, times * golden, repeat(load), repeat(walk));
    ::unlink(path.c_str());
    return met;
}

} // namespace

int main()
{
    bool met = bench_find("find, 48 ids in four layers", 48, 4, 16);
    met = bench_find("find, 10,000 ids in one layer", 10'000, 1, 1) && met;
    met = bench_constants() && met;
    met = bench_load("load 10,000 entries", 0) && met;
    met = bench_load("load 10,000 entries over 48", 48) && met;
    return met ? 0 : 2;
}
