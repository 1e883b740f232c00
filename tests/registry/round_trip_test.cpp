#include "base/handles.h"
#include "registry/key_store.h"
#include "serialisation/field_values.h"
#include "serialisation/load_exception.h"
#include "support/scratch_hive.h"

#include <gmock/gmock.h>

#include <limits>
#include <map>

namespace {

using namespace girder;
using namespace girder::registry_ex;
using nsm::value_name;
using nsm::value_reader;
using nsm::value_writer;
using nsm::details::load_exception;
using testing::ElementsAre;

class registry_test : public testing::Test {
protected:
    static RegistryKeyStore store() { return {HKEY_LOCAL_MACHINE, u"Software\\Zelmark test", {}}; }

    /// The type and size of a stored value; type 0xFFFF when there is none.
    static std::pair<DWORD, DWORD> stored(const wchar_t* subkey, const wchar_t* name)
    {
        const std::wstring key = std::wstring(L"Software\\Zelmark test") + (*subkey ? L"\\" : L"") + subkey;
        DWORD type = 0;
        DWORD size = 0;
        if (::RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, &type, nullptr, &size) !=
            ERROR_SUCCESS)
            return {0xFFFF, 0};
        return {type, size};
    }

    /// Calls `read` with the member of that name.
    template <typename Reading>
    void read_member(std::string_view wanted, Reading reading)
    {
        RegistryKeyStore source = store();
        int found = 0;
        source.open_for_reading().visit_members([&](value_name name, const value_reader& value) {
            if (name.text == wanted) {
                ++found;
                reading(value);
            }
        });
        EXPECT_EQ(found, 1) << wanted;
    }

    support::scratch_hive hive_;
};

TEST_F(registry_test, every_kind_reads_back_as_it_was_written)
{
    const auto expect_same = [this](auto write, auto read, const auto& written) {
        (store().open_for_writing().get()->*write)("value", written);
        read_member("value", [&](const value_reader& value) { EXPECT_EQ((value.*read)(), written); });
    };
    constexpr nsm::guid id{0x35B11BAB, 0x5238, 0x4E93, {0xB0, 0x6A, 0x92, 0x33, 0x2C, 0x5D, 0x20, 0xFA}};
    expect_same(&value_writer::write_date, &value_reader::as_date,
                file_time{unix_epoch_ticks + 1'750'852'989 * ticks_per_second});
    expect_same(&value_writer::write_string, &value_reader::as_string, std::u16string(u"Grüße 日本"));
    EXPECT_EQ(stored(L"", L"value"), std::pair(DWORD{REG_SZ}, DWORD{18})) << "with its terminating null";
    read_member("value", [](const value_reader& value) { EXPECT_THROW(value.as_guid(), load_exception); });
    expect_same(&value_writer::write_string, &value_reader::as_string, std::u16string());
    expect_same(&value_writer::write_guid, &value_reader::as_guid, id);
    for (const double number : {0.1, std::numeric_limits<double>::infinity()})
        expect_same(&value_writer::write_double, &value_reader::as_double, number);
    expect_same(&value_writer::write_float, &value_reader::as_float, 0.1F);
    for (const bool flag : {true, false})
        expect_same(&value_writer::write_boolean, &value_reader::as_boolean, flag);
    for (const std::int64_t number : {-2147483648LL, 2147483647LL, -2147483649LL, 2147483648LL}) {
        expect_same(&value_writer::write_signed, &value_reader::as_signed, number);
        const bool fits = number == static_cast<std::int32_t>(number);
        EXPECT_EQ(stored(L"", L"value").first, fits ? DWORD{REG_DWORD} : DWORD{REG_QWORD}) << number;
    }
    for (const std::uint64_t number : {0xFFFFFFFFULL, 0x100000000ULL})
        expect_same(&value_writer::write_unsigned, &value_reader::as_unsigned, number);
    for (const std::size_t size : {0U, 4U})
        expect_same(&value_writer::write_binary, &value_reader::as_binary, std::vector(size, std::byte{7}));
}

TEST_F(registry_test, arrays_are_subkeys_with_counted_elements)
{
    {
        const auto writer = store().open_for_writing();
        writer->begin_array("list", 4);
        writer->write_unsigned({}, 7);
        writer->write_null({});
        writer->begin_structure({}, 2);
        writer->write_boolean("inner", true);
        writer->end_structure();
        writer->write_unsigned({"", value_name::type_code_of_suffix(3)}, 9);
        writer->end_array();
        writer->write_boolean("after", true);
    }
    EXPECT_EQ(stored(L"list", L"@count"), std::pair(DWORD{REG_DWORD}, DWORD{4}));
    EXPECT_EQ(stored(L"list", L"00001"), std::pair(DWORD{REG_NONE}, DWORD{0}));
    EXPECT_EQ(stored(L"list", L"00003@3").first, DWORD{REG_DWORD});
    EXPECT_EQ(stored(L"", L"after").first, DWORD{REG_DWORD});
    std::vector<std::string> seen;
    read_member("list", [&seen](const value_reader& list) {
        list.visit_elements([&seen](const value_reader& element) {
            if (element.is_null()) {
                seen.emplace_back("null");
            } else if (seen.size() == 2) {
                seen.push_back("structure " + std::to_string(element.structure_version()));
                element.visit_members([&seen](value_name name, const value_reader&) { seen.emplace_back(name.text); });
            } else {
                seen.push_back(std::to_string(element.as_unsigned()));
            }
        });
    });
    EXPECT_THAT(seen, ElementsAre("7", "null", "structure 2", "inner", "9"));
}

TEST_F(registry_test, an_array_without_its_count_or_with_elements_missing_or_there_twice_is_refused)
{
    const auto put = [](const wchar_t* list, const wchar_t* name, DWORD number) {
        const std::wstring key = std::wstring(L"Software\\Zelmark test\\") + list;
        ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_DWORD, &number, sizeof number);
    };
    put(L"many", L"@count", 0xFFFFFFFF);
    put(L"twice", L"@count", 2);
    put(L"twice", L"00000@1", 8);
    for (const wchar_t* const list : {L"many", L"twice", L"no count"})
        put(list, L"00000", 7);
    for (const char* const name : {"many", "twice", "no count"})
        read_member(name, [](const value_reader& list) {
            EXPECT_THROW(list.visit_elements([](const value_reader&) {}), load_exception);
        });
}

} // namespace
