#include "base/handles.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "format/format.h"
#include "format/literals.h"
#include "update/http_session.h"
#include "update/http_transfer.h"

#include <array>
#include <cstdint>
#include <utility>

namespace girder::http {
namespace {

using namespace fmtkit::literals;

constexpr std::size_t longest_url = 4096;
constexpr DWORD status_ok = 200;
constexpr std::uint64_t largest_document = std::uint64_t{512} * 1024;
constexpr std::uint64_t largest_file = std::uint64_t{256} * 1024 * 1024;

std::u16string canonical_url(const wininet_functions& wininet, const std::u16string& url)
{
    std::array<char16_t, longest_url> buffer{};
    DWORD size = buffer.size();
    if (!wininet.canonicalize_url(as_wide(url), as_wide(buffer.data()), &size, ICU_BROWSER_MODE))
        throw_last_error("InternetCanonicalizeUrlW");
    return buffer.data();
}

/// WinINet never completes a request for an address without scheme or host.
void require_web_address(const wininet_functions& wininet, const std::u16string& url)
{
    URL_COMPONENTSW parts{};
    parts.dwStructSize = sizeof parts;
    parts.dwHostNameLength = 1; // asked for
    if (!wininet.crack_url(as_wide(url), static_cast<DWORD>(url.size()), 0, &parts))
        throw_last_error("InternetCrackUrlW");
    if ((parts.nScheme != INTERNET_SCHEME_HTTP && parts.nScheme != INTERNET_SCHEME_HTTPS) ||
        parts.dwHostNameLength == 0)
        throw_win32(ERROR_INTERNET_UNRECOGNIZED_SCHEME, "InternetCrackUrlW");
}

/// Counts the bytes of a body and compares them with what is allowed and what was announced.
class body_size {
public:
    body_size(std::uint64_t limit, std::optional<std::uint64_t> announced) : limit_(limit), announced_(announced)
    {
        check_limit(announced.value_or(0));
    }

    void add(std::size_t bytes)
    {
        received_ += bytes;
        check_limit(received_);
    }

    /// WinINet takes a lost connection for the end of the body.
    void end() const
    {
        if (announced_ && received_ < *announced_)
            throw_win32(ERROR_INTERNET_CONNECTION_ABORTED, "InternetReadFile");
    }

private:
    void check_limit(std::uint64_t size) const
    {
        if (size > limit_)
            throw_win32(ERROR_FILE_TOO_LARGE, "InternetReadFile");
    }

    std::uint64_t limit_;
    std::optional<std::uint64_t> announced_;
    std::uint64_t received_ = 0;
};

/// A new file, deleted again unless it was completed.
class downloaded_file {
public:
    explicit downloaded_file(std::u16string path)
        : path_(std::move(path)),
          file_(::CreateFileW(as_wide(path_), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr))
    {
        if (!file_)
            throw_last_error("CreateFileW");
    }
    downloaded_file(const downloaded_file&) = delete;
    downloaded_file& operator=(const downloaded_file&) = delete;
    ~downloaded_file()
    {
        if (!file_)
            return;
        file_.reset();
        ::DeleteFileW(as_wide(path_));
    }

    void append(std::span<const char> bytes) const
    {
        DWORD written = 0;
        if (!::WriteFile(file_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
            throw_last_error("WriteFile");
    }

    void complete() noexcept { file_.reset(); }

private:
    std::u16string path_;
    unique_file file_;
};

task<> open(transfer& opened, HINTERNET session, std::u16string url, std::u16string headers, cancellation cancelled)
{
    throw_if_cancelled(cancelled);
    co_await opened.open(session, url, headers, cancelled);
    if (opened.status() != status_ok)
        throw_if_failed(E_INVALIDARG, "HttpQueryInfoW");
}

} // namespace

session::session(std::u16string base) : base_(std::move(base)), wininet_(load_wininet())
{}

session::~session()
{
    close();
}

bool session::open(std::u16string_view agent)
{
    close();
    const std::u16string name(agent);
    handle_ = wininet_.open(as_wide(name), INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, INTERNET_FLAG_ASYNC);
    if (handle_)
        wininet_.set_status_callback(handle_, transfer::status_callback());
    return handle_ != nullptr;
}

void session::close() noexcept
{
    if (const HINTERNET handle = std::exchange(handle_, nullptr))
        wininet_.close_handle(handle);
}

task<std::string> session::fetch_document(std::u16string url, cancellation cancelled)
{
    const std::u16string address = canonical_url(wininet_, fmtkit::format(u"{0}{1}"_fmt, base_, url));
    require_web_address(wininet_, address);
    transfer request(wininet_);
    const std::u16string headers = u"Accept: application/json";
    co_await http::open(request, handle_, address, headers, cancelled);
    body_size size(largest_document, request.announced_length());
    std::string body;
    for (;;) {
        const std::span<const char> bytes = co_await request.read(cancelled);
        if (bytes.empty())
            break;
        size.add(bytes.size());
        body.append(bytes.begin(), bytes.end());
    }
    size.end();
    co_return body;
}

task<> session::download_file(std::u16string url, std::u16string path, cancellation cancelled)
{
    const std::u16string address = canonical_url(wininet_, fmtkit::format(u"{0}{1}"_fmt, base_, url));
    require_web_address(wininet_, address);
    transfer request(wininet_);
    const std::u16string headers = u"Accept: */*";
    co_await http::open(request, handle_, address, headers, cancelled);
    body_size size(largest_file, request.announced_length());
    downloaded_file file(path);
    for (;;) {
        const std::span<const char> bytes = co_await request.read(cancelled);
        if (bytes.empty())
            break;
        size.add(bytes.size());
        file.append(bytes);
    }
    size.end();
    file.complete();
}

} // namespace girder::http
