#include "base/system_library.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "format/format.h"
#include "format/literals.h"
#include "update/installer_file.h"

#include <windows.h>

#include <bcrypt.h>
#include <softpub.h>
#include <wintrust.h>

#include <span>

namespace tidelink {
namespace {

using namespace fmtkit::literals;
using girder::as_wide;
using girder::system_library;

std::uint64_t size_of(const girder::unique_file& file)
{
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(file.get(), &size))
        girder::throw_last_error("GetFileSizeEx");
    return static_cast<std::uint64_t>(size.QuadPart);
}

sha256_digest digest_of(std::span<const std::byte> content)
{
    const system_library bcrypt(u"bcrypt.dll");
    const auto open = bcrypt.function<decltype(::BCryptOpenAlgorithmProvider)>("BCryptOpenAlgorithmProvider");
    const auto close = bcrypt.function<decltype(::BCryptCloseAlgorithmProvider)>("BCryptCloseAlgorithmProvider");
    const auto hash = bcrypt.function<decltype(::BCryptHash)>("BCryptHash");
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    girder::throw_if_failed(HRESULT_FROM_NT(open(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0)),
                            "BCryptOpenAlgorithmProvider");
    sha256_digest digest;
    // The function takes its input without promising to leave it alone.
    auto* const input = reinterpret_cast<UCHAR*>(const_cast<std::byte*>(content.data()));
    const NTSTATUS status =
        hash(algorithm, nullptr, 0, input, static_cast<ULONG>(content.size()),
             reinterpret_cast<UCHAR*>(digest.bytes.data()), static_cast<ULONG>(digest.bytes.size()));
    close(algorithm, 0);
    girder::throw_if_failed(HRESULT_FROM_NT(status), "BCryptHash");
    return digest;
}

void verify_digest(const girder::unique_file& file, const Installer& promised)
{
    if (promised.size == 0 || size_of(file) != promised.size)
        throw verification_error("The installer has another size than announced.");
    const girder::unique_kernel_handle mapping(::CreateFileMappingW(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (!mapping)
        girder::throw_last_error("CreateFileMappingW");
    const girder::unique_view view(::MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
    if (!view)
        girder::throw_last_error("MapViewOfFile");
    if (digest_of({static_cast<const std::byte*>(view.get()), static_cast<std::size_t>(promised.size)}) !=
        promised.sha256)
        throw verification_error("The installer has another digest than announced.");
}

std::u16string name_in(const CERT_CONTEXT* certificate)
{
    const system_library crypt32(u"crypt32.dll");
    const auto get_name = crypt32.function<decltype(::CertGetNameStringW)>("CertGetNameStringW");
    const DWORD size = get_name(certificate, CERT_NAME_SIMPLE_DISPLAY_TYPE, 0, nullptr, nullptr, 0);
    std::u16string name(size, u'\0');
    get_name(certificate, CERT_NAME_SIMPLE_DISPLAY_TYPE, 0, nullptr, as_wide(name.data()), size);
    if (!name.empty())
        name.pop_back();
    return name;
}

/// WinVerifyTrust for one file; what it has found lives as long as this.
class signature {
public:
    signature(const std::u16string& path, const girder::unique_file& file)
        : file_{
              .cbStruct = sizeof file_, .pcwszFilePath = as_wide(path), .hFile = file.get(), .pgKnownSubject = nullptr}
    {
        data_.cbStruct = sizeof data_;
        data_.dwUIChoice = WTD_UI_NONE;
        data_.fdwRevocationChecks = WTD_REVOKE_NONE;
        data_.dwUnionChoice = WTD_CHOICE_FILE;
        data_.pFile = &file_;
        data_.dwStateAction = WTD_STATEACTION_VERIFY;
        data_.dwProvFlags = WTD_CACHE_ONLY_URL_RETRIEVAL;
        result_ = call();
    }
    signature(const signature&) = delete;
    signature& operator=(const signature&) = delete;
    ~signature()
    {
        data_.dwStateAction = WTD_STATEACTION_CLOSE;
        call();
    }

    bool valid() const noexcept { return result_ == ERROR_SUCCESS; }

    /// The first signer; null when there is none.
    const CRYPT_PROVIDER_SGNR* signer() const
    {
        const auto provider_data =
            wintrust_.function<decltype(::WTHelperProvDataFromStateData)>("WTHelperProvDataFromStateData");
        const auto get_signer =
            wintrust_.function<decltype(::WTHelperGetProvSignerFromChain)>("WTHelperGetProvSignerFromChain");
        CRYPT_PROVIDER_DATA* const found = provider_data(data_.hWVTStateData);
        return found ? get_signer(found, 0, FALSE, 0) : nullptr;
    }

private:
    LONG call() noexcept
    {
        GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
        return verify_(static_cast<HWND>(INVALID_HANDLE_VALUE), &action, &data_);
    }

    system_library wintrust_{u"wintrust.dll"};
    decltype(::WinVerifyTrust)* verify_ = wintrust_.function<decltype(::WinVerifyTrust)>("WinVerifyTrust");
    WINTRUST_FILE_INFO file_;
    WINTRUST_DATA data_{};
    LONG result_ = 0;
};

void verify_signature(const std::u16string& path, const girder::unique_file& file, std::u16string_view publisher)
{
    const signature found(path, file);
    if (!found.valid())
        throw verification_error("The installer has no valid signature.");
    const CRYPT_PROVIDER_SGNR* const signer = found.signer();
    if (!signer || !signer->pChainContext || signer->csCertChain == 0)
        throw verification_error("The installer has no signer.");
    // WinVerifyTrust has looked at the chain already; asked once more, a lenient provider cannot let it pass. Wine's
    // takes a signature by an unknown authority for valid.
    if (signer->pChainContext->TrustStatus.dwErrorStatus != CERT_TRUST_NO_ERROR)
        throw verification_error("The installer's signer is not trusted.");
    if (publisher.empty() || name_in(signer->pasCertChain[0].pCert) != publisher)
        throw verification_error("The installer is signed by somebody else.");
}

} // namespace

girder::unique_file open_verified(const std::u16string& path, const Installer& promised, std::u16string_view publisher)
{
    girder::unique_file file(::CreateFileW(as_wide(path), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                           FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        girder::throw_last_error("CreateFileW");
    verify_digest(file, promised);
    verify_signature(path, file, publisher);
    return file;
}

std::u16string installer_command_line(std::u16string_view path, std::uintptr_t process_handle)
{
    return fmtkit::format(u"\"{}\" --wait-process {}"_fmt, path, static_cast<std::uint64_t>(process_handle));
}

void start_installer(const std::u16string& path)
{
    girder::unique_kernel_handle self;
    if (!::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentProcess(), ::GetCurrentProcess(), self.put(), 0, TRUE,
                           DUPLICATE_SAME_ACCESS))
        girder::throw_last_error("DuplicateHandle");
    std::u16string command_line = installer_command_line(path, reinterpret_cast<std::uintptr_t>(self.get()));
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(nullptr, as_wide(command_line.data()), nullptr, nullptr, TRUE, NORMAL_PRIORITY_CLASS, nullptr,
                          nullptr, &startup, &started))
        girder::throw_last_error("CreateProcessW");
    const girder::unique_kernel_handle process(started.hProcess);
    const girder::unique_kernel_handle thread(started.hThread);
}

} // namespace tidelink
