#pragma once

#include "async/cancellation.h"
#include "async/task.h"
#include "update/wininet.h"

#include <string>
#include <string_view>

namespace girder::http {

inline constexpr char16_t user_agent[] = u"Zelmark girder Library win7-compatible HTTP client. Version 1.0";

/// GET requests over HTTP and HTTPS by asynchronous WinINet, directly, without a proxy. Transfers of one session may
/// run at the same time; each resumes its awaiter on a thread of the pool. The session outlives them; they may be
/// cancelled at any time and then end at once, while WinINet gives up the connection later by itself.
class session {
public:
    /// \param base  what every address is put behind, as it stands, e.g. u"https://updates.example"; may be empty
    /// \throws system_error when wininet.dll cannot be loaded
    explicit session(std::u16string base);
    session(const session&) = delete;
    session& operator=(const session&) = delete;
    ~session();

    /// Opens the WinINet session, after closing one that is open. \return false when InternetOpenW fails
    bool open(std::u16string_view agent = user_agent);

    // Both throw system_error with
    // - 0x80070057 for an answer with another status than 200, whichever it is;
    // - ERROR_INTERNET_UNRECOGNIZED_SCHEME (12006) for an address that is not http or https, or has no host;
    // - ERROR_HTTP_REDIRECT_FAILED (12156) for a redirect that leaves https, and for the tenth;
    // - ERROR_INTERNET_CONNECTION_ABORTED (12030) for a body shorter than its announced length;
    // - ERROR_FILE_TOO_LARGE (223) for a document of more than 512 KiB, and a file of more than 256 MiB;
    // - ERROR_INTERNET_TIMEOUT (12002) when the server is silent for 30 seconds;
    // - what WinINet reports otherwise;
    // and operation_cancelled.

    /// The body of a JSON document.
    task<std::string> fetch_document(std::u16string url, cancellation cancelled);
    /// Writes the body to a new file at `path`, replacing one that is there. What fails leaves no file.
    task<> download_file(std::u16string url, std::u16string path, cancellation cancelled);

private:
    void close() noexcept;

    std::u16string base_;
    wininet_functions wininet_;
    HINTERNET handle_ = nullptr;
};

} // namespace girder::http
