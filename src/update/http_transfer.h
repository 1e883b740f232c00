#pragma once

#include "async/cancellation.h"
#include "async/task.h"
#include "base/handles.h"
#include "update/wininet.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace girder::http {

class request;

/// A periodic timer of the thread pool; closing it waits for its callback.
struct watchdog_traits {
    using raw_type = PTP_TIMER;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type timer) noexcept;
};

/// One GET request, from its opening to the end of its body. What WinINet writes to lives on by itself until WinINet
/// has closed the request; this object may be destroyed at any time. A server that is silent for 30 seconds is given
/// up.
class transfer {
public:
    /// \throws system_error
    explicit transfer(const wininet_functions& wininet);
    transfer(const transfer&) = delete;
    transfer& operator=(const transfer&) = delete;
    ~transfer();

    /// Sends the request and awaits the head of its answer.
    /// \param session  of WinINet, with status_callback()
    /// \param url      canonical
    /// \throws system_error, operation_cancelled
    task<> open(HINTERNET session, std::u16string url, std::u16string headers, cancellation cancelled);

    /// The status code; 0 when the server gave none.
    DWORD status() const;
    /// Length of the body as the server announced it; empty when it did not.
    std::optional<std::uint64_t> announced_length() const;

    /// The next bytes of the body, none at its end; valid until the next call. \throws system_error,
    /// operation_cancelled
    task<std::span<const char>> read(cancellation cancelled);

    static INTERNET_STATUS_CALLBACK status_callback() noexcept;

private:
    task<> completion(const char* call, cancellation cancelled);

    const wininet_functions& wininet_;
    std::shared_ptr<request> request_;
    unique_handle<watchdog_traits> watchdog_;
};

} // namespace girder::http
