// Looking up texts by id and loading packs, beside boost::unordered_flat_map, an array, and the least that any reader
// of a pack has to do. Ids and texts are drawn anew for every round.

#include "harness.h"
#include "localisation/language_pack.h"
#include "localisation/little_endian.h"
#include "localisation/pack_name_hash.h"
#include "localisation/string_tables.h"

#include <fcntl.h>
#include <libintl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/unordered/unordered_flat_map.hpp>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace tidelink;
using bench::random_source;
using pack_bytes = std::vector<std::byte>;

std::size_t below(random_source& random, std::size_t limit)
{
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

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

pack_bytes pack_of(std::span<const entry_source> entries)
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
    append(pack, static_cast<std::uint32_t>(entries.size()));
    for (const entry_source& entry : entries) {
        append(pack, entry.id);
        append(pack, std::uint32_t{0});
        append(pack, static_cast<std::uint16_t>(entry.text.size()));
        for (const char16_t unit : entry.text)
            append(pack, unit);
        append(pack, char16_t{0});
    }
    return pack;
}

/// Entries with ids of keys as long as those of the program, and texts of 1 to 60 units.
std::vector<entry_source> draw_entries(random_source& random, std::size_t count)
{
    boost::unordered_flat_map<std::uint32_t, bool> taken;
    std::vector<entry_source> entries;
    while (entries.size() < count) {
        std::u16string key(6 + below(random, 30), u' ');
        for (char16_t& unit : key)
            unit = static_cast<char16_t>(u'a' + below(random, 26));
        if (taken.emplace(PackNameHash(key), true).second)
            entries.push_back({PackNameHash(key), std::u16string(1 + below(random, 60), u'x')});
    }
    return entries;
}

/// What another reader of packs would keep for an id.
struct plain_entry {
    std::uint32_t revision;
    std::u16string_view text;
};

/// The same entries in a table of several layers and in a map, and ids to ask both for.
struct look_up {
    look_up(random_source& random, std::size_t count, std::size_t layers) : entries(draw_entries(random, count))
    {
        for (std::size_t layer = 0; layer < layers; ++layer) {
            packs.push_back(pack_of(std::span(entries).subspan(layer * count / layers, count / layers)));
            table.layer(packs.back(), pack_form::bare);
        }
        for (const entry_source& entry : entries) {
            const StringEntry& found = table.find(entry.id);
            map.emplace(entry.id, plain_entry{found.revision(), found.text()});
        }
        constexpr std::size_t asked = 4096;
        while (ids.size() < asked)
            ids.push_back(entries[below(random, entries.size())].id);
    }

    std::vector<entry_source> entries;
    std::vector<pack_bytes> packs;
    StringTable table;
    boost::unordered_flat_map<std::uint32_t, plain_entry> map;
    std::vector<std::uint32_t> ids;
};

bench::comparison find_in(std::string work, std::size_t count, std::size_t layers)
{
    const auto drawn = std::make_shared<std::unique_ptr<look_up>>();
    const auto by_table = [](const look_up& in, std::uint32_t id) { return in.table.find(id).text(); };
    const auto by_map = [](const look_up& in, std::uint32_t id) { return in.map.find(id)->second.text; };
    const auto asks = [&](std::string name, auto find) {
        return bench::participant{std::move(name),
                                  [drawn, find] {
                                      const look_up& in = **drawn;
                                      std::size_t units = 0;
                                      for (const std::uint32_t id : in.ids)
                                          units += find(in, id).size();
                                      bench::keep(units);
                                  },
                                  [drawn, find] {
                                      return std::ranges::all_of((*drawn)->entries, [&](const entry_source& entry) {
                                          return find(**drawn, entry.id) == entry.text;
                                      });
                                  }};
    };
    return {.work = std::move(work),
            .goal = 1.0,
            .subject = asks("StringTable::find", by_table),
            .peers = {asks("boost::unordered_flat_map", by_map)},
            .draw = [=](random_source& random) { *drawn = std::make_unique<look_up>(random, count, layers); }};
}

std::vector<entry_source> constant_entries;
pack_bytes constant_pack;
std::array<std::u16string_view, string_slot::count> plain_array;

void draw_constants(random_source& random)
{
    constant_entries.clear();
    for (const std::uint32_t id : string_slot::ids)
        constant_entries.push_back({id, std::u16string(1 + below(random, 60), u'x')});
    constant_pack = pack_of(constant_entries);
    StringTable table;
    table.layer(constant_pack, pack_form::bare);
    for (std::size_t slot = 0; slot < string_slot::count; ++slot)
        plain_array[slot] = table.text(string_slot::ids[slot]);
    build_string_tables({.common = {}, .program = {}, .common_translation = constant_pack, .program_translation = {}});
}

/// Calls `take` with eight constant ids, each with what `fetch` returns for it.
template <typename Fetch, typename Take>
void fetch_constants(Fetch fetch, Take take)
{
    const auto one = [&]<std::uint32_t id>(std::integral_constant<std::uint32_t, id>) {
        take(id, fetch.template operator()<id>());
    };
    one(std::integral_constant<std::uint32_t, string_id::ok>());
    one(std::integral_constant<std::uint32_t, string_id::cancel>());
    one(std::integral_constant<std::uint32_t, string_id::settings>());
    one(std::integral_constant<std::uint32_t, string_id::apply>());
    one(std::integral_constant<std::uint32_t, string_id::security>());
    one(std::integral_constant<std::uint32_t, string_id::retry>());
    one(std::integral_constant<std::uint32_t, string_id::operation_error>());
    one(std::integral_constant<std::uint32_t, string_id::update_offer>());
}

/// Keeps the compiler from joining several uses of a text, and from knowing it the next time.
void use(std::u16string_view text)
{
    asm volatile("" : : "r"(text.size()), "r"(text.data()) : "memory");
}

bench::comparison text_of_a_constant()
{
    const auto fetches = [](std::string name, auto fetch) {
        return bench::participant{std::move(name),
                                  [fetch] {
                                      for (int times = 10'000; times > 0; --times)
                                          fetch_constants(fetch,
                                                          [](std::uint32_t, std::u16string_view text) { use(text); });
                                  },
                                  [fetch] {
                                      bool right = true;
                                      fetch_constants(fetch, [&](std::uint32_t id, std::u16string_view text) {
                                          right = right && text == constant_entries[string_slot::of(id)].text;
                                      });
                                      return right;
                                  }};
    };
    return {.work = "text of a constant id",
            .goal = 2.0,
            .subject = fetches("text", []<std::uint32_t id>() { return text(id); }),
            .peers = {fetches("array index", []<std::uint32_t id>() { return plain_array[string_slot::of(id)]; })},
            .draw = draw_constants};
}

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
        if (address_ == MAP_FAILED)
            std::abort();
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

enum class ids_beneath { other, same };

/// A pack in a file, and a table to lay it over.
struct pack_file {
    pack_file()
        : path((std::filesystem::temp_directory_path() / ("strings_bench." + std::to_string(::getpid()))).string())
    {}
    ~pack_file() { ::unlink(path.c_str()); }
    pack_file(const pack_file&) = delete;
    pack_file& operator=(const pack_file&) = delete;

    /// \param beneath  how many entries the layer beneath has; all of them with other ids, or the first ones with the
    /// same
    void draw(random_source& random, std::size_t count, std::size_t beneath, ids_beneath which)
    {
        entries = draw_entries(random, count + beneath);
        lower_pack =
            pack_of(which == ids_beneath::same ? std::span(entries).first(beneath) : std::span(entries).subspan(count));
        entries.resize(count);
        lower = StringTable();
        lower.layer(lower_pack, pack_form::bare);
        const pack_bytes pack = pack_of(entries);
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        if (file == nullptr || std::fwrite(pack.data(), 1, pack.size(), file) != pack.size() || std::fclose(file) != 0)
            std::abort();
    }

    std::string path;
    std::vector<entry_source> entries;
    pack_bytes lower_pack;
    StringTable lower;
};

/// \param beneath  how many entries the layer beneath has
bench::comparison load(std::string work, std::size_t beneath, ids_beneath which, double goal)
{
    constexpr std::size_t count = 10'000;
    constexpr int times = 8; // the first one pays for the cold file
    const auto file = std::make_shared<pack_file>();
    const auto load_once = [file](auto then) {
        const mapping mapped(file->path.c_str());
        StringTable table = StringTable::above(file->lower);
        table.layer(mapped.bytes(), pack_form::bare);
        return then(table);
    };
    const auto walk_once = [file] { return walk_headers(mapping(file->path.c_str()).bytes()); };
    return {.work = std::move(work),
            .goal = goal,
            .subject = {"StringTable::layer",
                        [=] {
                            for (int left = times; left > 0; --left)
                                bench::keep(load_once([](const StringTable& table) { return table.find_or_null(0); }));
                        },
                        [=] {
                            return load_once([&](const StringTable& table) {
                                return std::ranges::all_of(file->entries, [&](const entry_source& entry) {
                                    return table.text(entry.id) == entry.text;
                                });
                            });
                        }},
            .peers = {{"mapping and walking the headers",
                       [=] {
                           for (int left = times; left > 0; --left)
                               bench::keep(walk_once());
                       },
                       [=] {
                           std::size_t units = 0;
                           for (const entry_source& entry : file->entries)
                               units += entry.text.size();
                           return walk_once() == units;
                       }}},
            .draw = [=](random_source& random) { file->draw(random, count, beneath, which); }};
}

/// A language pack of 48 texts, and a catalogue of the same texts, both in files that no program has read before.
class translation_files {
public:
    translation_files()
        : folder_((std::filesystem::temp_directory_path() / ("strings_bench.catalogues." + std::to_string(::getpid())))
                      .string())
    {
        if (std::setlocale(LC_ALL, "C.UTF-8") == nullptr || ::setenv("LANGUAGE", "xx", 1) != 0)
            std::abort();
        std::filesystem::create_directories(folder_ + "/xx/LC_MESSAGES");
    }
    ~translation_files() { std::filesystem::remove_all(folder_); }
    translation_files(const translation_files&) = delete;
    translation_files& operator=(const translation_files&) = delete;

    void draw(random_source& random)
    {
        constexpr std::size_t count = 48;
        entries = draw_entries(random, count);
        // gettext remembers every catalogue that it has opened in this process.
        static int drawn = 0;
        ++drawn;
        pack_path = folder_ + "/" + std::to_string(drawn) + ".lpack";
        domain = "domain" + std::to_string(drawn);
        write_pack();
        write_catalogue();
        ::bindtextdomain(domain.c_str(), folder_.c_str());
    }

    static std::string key_of(const entry_source& entry) { return "key " + std::to_string(entry.id); }

    std::vector<entry_source> entries;
    std::string pack_path;
    std::string domain;

private:
    void write_pack() const
    {
        constexpr std::array<unsigned char, 16> signature = {0x91, 0x58, 0x27, 0xFD, 0x72, 0xA1, 0xC1, 0x4C,
                                                             0x8A, 0xBA, 0x56, 0x4E, 0xFC, 0x98, 0xDD, 0x21};
        pack_bytes file;
        for (const unsigned char value : signature)
            file.push_back(std::byte{value});
        append(file, std::uint32_t{1});
        append(file, PackNameHash(u"common"));
        append(file, std::int32_t{28});
        const pack_bytes module = pack_of(entries);
        file.insert(file.end(), module.begin(), module.end());
        std::ofstream(pack_path, std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    }

    void write_catalogue() const
    {
        const std::string source = folder_ + "/texts.po";
        std::ofstream texts(source);
        texts << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
        for (const entry_source& entry : entries)
            texts << "msgid \"" << key_of(entry) << "\"\nmsgstr \"" << std::string(entry.text.size(), 'x') << "\"\n";
        texts.close();
        const std::string compile = "msgfmt -o " + folder_ + "/xx/LC_MESSAGES/" + domain + ".mo " + source;
        if (std::system(compile.c_str()) != 0)
            std::abort();
    }

    std::string folder_;
};

enum class pack_work { map_only, find_first };

/// gettext keeps a catalogue that it has opened: each of them is opened once only, and the pack stays mapped, too. What
/// the mapping alone takes is what no reader of packs can be faster than.
bench::comparison open_and_find_first(std::string work, pack_work part, double goal)
{
    const auto files = std::make_shared<translation_files>();
    const auto mapped = std::make_shared<std::unique_ptr<mapping>>();
    const auto map = [files, mapped] {
        if (*mapped == nullptr)
            *mapped = std::make_unique<mapping>(files->pack_path.c_str());
        return (*mapped)->bytes();
    };
    const auto find = [map](const entry_source& entry) {
        StringTable table;
        if (const std::span<const std::byte> pack = map(); is_language_pack(pack))
            table.layer(findModule(pack, u"common"), pack_form::bare);
        return table.text(entry.id);
    };
    const auto first_text = [files] {
        return ::dgettext(files->domain.c_str(), translation_files::key_of(files->entries[0]).c_str());
    };
    const auto run = [=] {
        if (part == pack_work::map_only)
            bench::keep(map());
        else
            bench::keep(find(files->entries[0]));
    };
    return {.work = std::move(work),
            .goal = goal,
            .subject = {part == pack_work::map_only ? "mapping" : "language pack", run,
                        [=] {
                            const bool right = std::ranges::all_of(
                                files->entries, [&](const entry_source& entry) { return find(entry) == entry.text; });
                            mapped->reset();
                            return right;
                        },
                        [=] { mapped->reset(); }},
            .peers = {{"gettext", [=] { bench::keep(first_text()); },
                       [=] { return std::string(first_text()) == std::string(files->entries[0].text.size(), 'x'); }}},
            .draw = [files](random_source& random) { files->draw(random); },
            .checked_draws = 5,
            .rounds = 61};
}

} // namespace

int main()
{
    bench::report report("Texts");
    report.compare(find_in("find, 48 ids in four layers", 48, 4));
    report.compare(find_in("find, 10,000 ids in one layer", 10'000, 1));
    report.compare(text_of_a_constant());
    report.compare(load("load 10,000 entries", 0, ids_beneath::other, 1.35));
    report.compare(load("load 10,000 entries over a layer of 48", 48, ids_beneath::other, 1.35));
    report.compare(load("load 10,000 translations over an English layer of 10,000", 10'000, ids_beneath::same, 1.8));
    report.compare(open_and_find_first("open 48 translations and find the first text", pack_work::find_first, 0.2));
    report.compare(open_and_find_first("open the file of 48 translations alone", pack_work::map_only, 0));
    return report.exit_code();
}
