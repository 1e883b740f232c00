#include "async/resume.h"
#include "async/srw_lock.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "update/http_transfer.h"
#include "update/https.h"

#include <utility>
#include <vector>

namespace girder::http {
namespace {

constexpr std::size_t buffer_size = std::size_t{64} * 1024;
constexpr DWORD watch_interval_ms = 250;
constexpr ULONGLONG longest_silence_ms = 30'000;
constexpr int first_refused_redirect = 10;
/// An existing connection is used and kept, and nobody is asked anything.
constexpr DWORD open_flags = INTERNET_FLAG_EXISTING_CONNECT | INTERNET_FLAG_KEEP_CONNECTION | INTERNET_FLAG_NO_UI;
static_assert(open_flags == 0x20400200);

} // namespace

/// What WinINet and the task share: WinINet keeps it alive from the opening until its last callback.
///
/// At any time at most one call is pending. It is completed by the first of WinINet, the redirect that is refused and
/// the watchdog; what comes later is too late.
class request : public std::enable_shared_from_this<request> {
public:
    request() : completed_(::CreateEventW(nullptr, FALSE, FALSE, nullptr))
    {
        if (!completed_)
            throw_last_error("CreateEventW");
    }

    HANDLE completed() const noexcept { return completed_.get(); }
    std::span<char> buffer() noexcept { return buffer_; }
    DWORD* bytes_read() noexcept { return &bytes_read_; }

    void keep_for_callbacks()
    {
        const exclusive_lock guard(lock_);
        kept_ = shared_from_this();
    }

    /// The opening has failed before there was a handle, which would have a last callback.
    void drop_unless_handle_exists() noexcept
    {
        std::shared_ptr<request> last;
        const exclusive_lock guard(lock_);
        if (!handle_)
            last = std::exchange(kept_, nullptr);
    }

    /// Before every call that may be pending. \throws system_error when a redirect was refused meanwhile
    void expect_completion()
    {
        const exclusive_lock guard(lock_);
        if (refusal_ != ERROR_SUCCESS)
            throw_win32(refusal_, "InternetOpenUrlW");
        ::ResetEvent(completed_.get());
        pending_ = true;
        error_ = ERROR_SUCCESS;
        last_sign_ = ::GetTickCount64();
    }
    void completed_at_once() noexcept
    {
        const exclusive_lock guard(lock_);
        pending_ = false;
    }

    DWORD error() noexcept
    {
        const exclusive_lock guard(lock_);
        return error_;
    }

    HINTERNET handle() noexcept
    {
        const exclusive_lock guard(lock_);
        return handle_;
    }
    HINTERNET release_handle() noexcept
    {
        const exclusive_lock guard(lock_);
        pending_ = false;
        return std::exchange(handle_, nullptr);
    }

    void fail_when_silent() noexcept
    {
        const exclusive_lock guard(lock_);
        if (pending_ && ::GetTickCount64() - last_sign_ >= longest_silence_ms)
            complete(ERROR_INTERNET_TIMEOUT);
    }

    void on_status(DWORD status, void* information) noexcept
    {
        std::shared_ptr<request> last; // outlives the lock
        const exclusive_lock guard(lock_);
        last_sign_ = ::GetTickCount64();
        switch (status) {
        case INTERNET_STATUS_HANDLE_CREATED:
            handle_ = reinterpret_cast<HINTERNET>(static_cast<const INTERNET_ASYNC_RESULT*>(information)->dwResult);
            break;
        case INTERNET_STATUS_REDIRECT:
            if (++redirects_ >= first_refused_redirect ||
                !is_https(as_utf16(static_cast<const wchar_t*>(information)))) {
                refusal_ = ERROR_HTTP_REDIRECT_FAILED;
                complete(refusal_);
            }
            break;
        case INTERNET_STATUS_REQUEST_COMPLETE: {
            const auto& result = *static_cast<const INTERNET_ASYNC_RESULT*>(information);
            complete(result.dwResult != 0 ? DWORD{ERROR_SUCCESS} : result.dwError);
            break;
        }
        case INTERNET_STATUS_HANDLE_CLOSING:
            handle_ = nullptr;
            last = std::exchange(kept_, nullptr);
            break;
        default:
            break;
        }
    }

private:
    void complete(DWORD error) noexcept
    {
        if (!pending_)
            return;
        pending_ = false;
        error_ = error;
        ::SetEvent(completed_.get());
    }

    SRWLOCK lock_ = SRWLOCK_INIT;
    unique_kernel_handle completed_;
    bool pending_ = false;
    DWORD error_ = ERROR_SUCCESS;
    DWORD refusal_ = ERROR_SUCCESS; ///< stays, also when it comes between two calls
    int redirects_ = 0;
    ULONGLONG last_sign_ = 0;
    HINTERNET handle_ = nullptr;
    std::shared_ptr<request> kept_;
    DWORD bytes_read_ = 0;
    std::vector<char> buffer_ = std::vector<char>(buffer_size);
};

void watchdog_traits::close(raw_type timer) noexcept
{
    ::SetThreadpoolTimer(timer, nullptr, 0, 0);
    ::WaitForThreadpoolTimerCallbacks(timer, TRUE);
    ::CloseThreadpoolTimer(timer);
}

transfer::transfer(const wininet_functions& wininet)
    : wininet_(wininet), request_(std::make_shared<request>()),
      watchdog_(::CreateThreadpoolTimer(
          [](PTP_CALLBACK_INSTANCE, void* watched, PTP_TIMER) { static_cast<request*>(watched)->fail_when_silent(); },
          request_.get(), nullptr))
{
    if (!watchdog_)
        throw_last_error("CreateThreadpoolTimer");
    FILETIME at_once{};
    ::SetThreadpoolTimer(watchdog_.get(), &at_once, watch_interval_ms, 0);
}

transfer::~transfer()
{
    if (const HINTERNET handle = request_->release_handle())
        wininet_.close_handle(handle);
}

INTERNET_STATUS_CALLBACK transfer::status_callback() noexcept
{
    return [](HINTERNET, DWORD_PTR context, DWORD status, void* information, DWORD) {
        if (context != 0)
            reinterpret_cast<request*>(context)->on_status(status, information);
    };
}

task<> transfer::completion(const char* call, cancellation cancelled)
{
    co_await resume_on_signal(request_->completed(), cancelled);
    if (const DWORD error = request_->error())
        throw_win32(error, call);
}

task<> transfer::open(HINTERNET session, std::u16string url, std::u16string headers, cancellation cancelled)
{
    request_->keep_for_callbacks();
    request_->expect_completion();
    const HINTERNET handle =
        wininet_.open_url(session, as_wide(url), as_wide(headers), static_cast<DWORD>(headers.size()), open_flags,
                          reinterpret_cast<DWORD_PTR>(request_.get()));
    const DWORD error = ::GetLastError();
    if (handle) {
        request_->completed_at_once();
        co_return;
    }
    if (error != ERROR_IO_PENDING) {
        request_->drop_unless_handle_exists();
        throw_win32(error, "InternetOpenUrlW");
    }
    co_await completion("InternetOpenUrlW", cancelled);
}

DWORD transfer::status() const
{
    DWORD status = 0;
    DWORD size = sizeof status;
    if (!wininet_.query_info(request_->handle(), HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size,
                             nullptr))
        throw_last_error("HttpQueryInfoW");
    return status;
}

std::optional<std::uint64_t> transfer::announced_length() const
{
    wchar_t text[24]{};
    DWORD size = sizeof text;
    if (!wininet_.query_info(request_->handle(), HTTP_QUERY_CONTENT_LENGTH, text, &size, nullptr))
        return std::nullopt;
    std::uint64_t length = 0;
    for (const wchar_t* digit = text; *digit != L'\0'; ++digit) {
        if (*digit < L'0' || *digit > L'9')
            return std::nullopt;
        length = length * 10 + static_cast<std::uint64_t>(*digit - L'0');
    }
    return length;
}

task<std::span<const char>> transfer::read(cancellation cancelled)
{
    throw_if_cancelled(cancelled);
    const std::span<char> buffer = request_->buffer();
    request_->expect_completion();
    const BOOL at_once = wininet_.read_file(request_->handle(), buffer.data(), static_cast<DWORD>(buffer.size()),
                                            request_->bytes_read());
    const DWORD error = ::GetLastError();
    if (at_once) {
        request_->completed_at_once();
    } else {
        if (error != ERROR_IO_PENDING)
            throw_win32(error, "InternetReadFile");
        co_await completion("InternetReadFile", cancelled);
    }
    const std::size_t size = *request_->bytes_read();
    const std::span<const char> bytes = buffer.first(size);
    co_return bytes;
}

} // namespace girder::http
