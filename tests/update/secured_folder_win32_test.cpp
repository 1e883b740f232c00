#include "base/handles.h"
#include "base/wide.h"
#include "update/secured_folder.h"

#include <windows.h>

#include <aclapi.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace {

using girder::as_wide;
using tidelink::secured_folder;

bool exists(const std::u16string& path)
{
    return ::GetFileAttributesW(as_wide(path)) != INVALID_FILE_ATTRIBUTES;
}

/// Two are allowed everything, nobody else anything, also in what is made inside.
void expect_for_administrators_alone(std::u16string path)
{
    girder::unique_local_memory descriptor;
    PSID owner = nullptr;
    PACL list = nullptr;
    ASSERT_EQ(::GetNamedSecurityInfoW(as_wide(path.data()), SE_FILE_OBJECT,
                                      OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &owner, nullptr, &list,
                                      nullptr, descriptor.put()),
              DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(list);
    EXPECT_EQ(list->AceCount, 2);
    for (DWORD i = 0; i < list->AceCount; ++i) {
        void* entry = nullptr;
        ASSERT_TRUE(::GetAce(list, i, &entry));
        auto& allowed = *static_cast<ACCESS_ALLOWED_ACE*>(entry);
        EXPECT_EQ(allowed.Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
        EXPECT_EQ(allowed.Header.AceFlags & (OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE),
                  OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE);
        EXPECT_EQ(allowed.Mask, DWORD{FILE_ALL_ACCESS});
        // Wine keeps modes of the host's files: the owner stands there for the administrators.
        EXPECT_TRUE(::IsWellKnownSid(&allowed.SidStart, WinLocalSystemSid) ||
                    ::IsWellKnownSid(&allowed.SidStart, WinBuiltinAdministratorsSid) ||
                    ::EqualSid(&allowed.SidStart, owner));
    }
}

std::wstring deletions_at_restart()
{
    std::wstring list(0x8000, L'\0');
    auto size = static_cast<DWORD>(list.size() * sizeof(wchar_t));
    ::RegGetValueW(HKEY_LOCAL_MACHINE, L"System\\CurrentControlSet\\Control\\Session Manager",
                   L"PendingFileRenameOperations", RRF_RT_REG_MULTI_SZ, nullptr, list.data(), &size);
    return list;
}

TEST(secured_folder_test, is_for_administrators_alone_and_goes_with_its_files)
{
    std::u16string path;
    {
        secured_folder folder;
        path = folder.path();
        const secured_folder moved = std::move(folder);
        EXPECT_EQ(moved.path(), path);
        expect_for_administrators_alone(path);
        std::ofstream(std::filesystem::path(moved.path_of(u"file"))) << "content";
        EXPECT_TRUE(exists(path + u"\\file"));
    }
    EXPECT_FALSE(exists(path));
    EXPECT_NE(secured_folder().path(), secured_folder().path());
}

TEST(secured_folder_test, is_kept_until_the_system_restarts)
{
    std::u16string path;
    {
        secured_folder folder;
        path = folder.path();
        std::ofstream(std::filesystem::path(folder.path_of(u"file"))) << "content";
        folder.keep_until_restart();
    }
    EXPECT_TRUE(exists(path + u"\\file"));
    const std::wstring deletions = deletions_at_restart();
    const std::wstring folder = L"\\??\\" + std::wstring(girder::as_wide(path));
    EXPECT_NE(deletions.find(folder + L"\\file" + L'\0'), std::wstring::npos);
    EXPECT_GT(deletions.find(folder + L'\0'), deletions.find(folder + L"\\file"));
    ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"System\\CurrentControlSet\\Control\\Session Manager",
                         L"PendingFileRenameOperations");
    std::filesystem::remove_all(path);
}

} // namespace
