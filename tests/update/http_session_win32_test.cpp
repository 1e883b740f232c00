#include "async/cancellation.h"
#include "base/system_error.h"
#include "base/wide.h"
#include "scripted_server.h"
#include "update/http_session.h"

#include <gmock/gmock.h>

#include <coroutine>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <optional>

namespace {

using namespace girder;
using namespace std::chrono_literals;
using support::scripted_server;
using enum scripted_server::after_answer;

constexpr http::transfer_limits small_limits{.document_bytes = 1000, .file_bytes = 200'000, .silence = 500ms};
constexpr auto patience = 10s;

/// What a transfer ended with: a body, an error code, or a cancellation.
struct outcome {
    std::optional<std::string> body;
    std::uint32_t error = 0;
    bool cancelled = false;
};

/// A coroutine that frees itself: it is still ending when its outcome is known.
struct self_owned {
    struct promise_type {
        self_owned get_return_object() const noexcept { return {}; }
        std::suspend_never initial_suspend() const noexcept { return {}; }
        std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        void unhandled_exception() const noexcept { std::terminate(); }
    };
};

template <typename Start>
self_owned run(Start start, std::promise<outcome> end)
{
    outcome result;
    try {
        result.body = co_await start();
    } catch (const system_error& error) {
        result.error = error.code();
    } catch (const operation_cancelled&) {
        result.cancelled = true;
    }
    end.set_value(result);
}

template <typename Start>
outcome outcome_of(Start start)
{
    std::promise<outcome> end;
    std::future<outcome> ended = end.get_future();
    run(start, std::move(end));
    if (ended.wait_for(patience) != std::future_status::ready) {
        ADD_FAILURE() << "never ends";
        std::abort();
    }
    return ended.get();
}

class http_session_test : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        WSADATA data{};
        ::WSAStartup(MAKEWORD(2, 2), &data);
    }
    static void TearDownTestSuite() { ::WSACleanup(); }
    void SetUp() override { std::filesystem::remove(file_); }
    void TearDown() override { std::filesystem::remove(file_); }

    static outcome fetch(std::u16string base, std::u16string url, cancellation cancelled = {})
    {
        http::session session(std::move(base), small_limits);
        EXPECT_TRUE(session.open());
        const auto start = [&] { return session.fetch_document(url, cancelled); };
        return outcome_of(start);
    }

    static task<std::string> download(http::session& session, std::filesystem::path path)
    {
        const std::u16string name(as_utf16(path.c_str()));
        co_await session.download_file(u"/file", name, {});
        std::ifstream file(path, std::ios::binary);
        std::string content(std::istreambuf_iterator<char>(file), {});
        co_return content;
    }

    outcome download(std::u16string base) const
    {
        http::session session(std::move(base), small_limits);
        EXPECT_TRUE(session.open());
        const auto start = [&] { return download(session, file_); };
        return outcome_of(start);
    }

    const std::filesystem::path file_ = std::filesystem::temp_directory_path() / "tidelink download.bin";
};

std::string answer(const std::string& head, const std::string& body)
{
    return "HTTP/1.1 " + head + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

TEST_F(http_session_test, fetches_a_document)
{
    const scripted_server server(answer("200 OK", "{\"Version\":1}"), close);
    const outcome fetched = fetch(server.base(), u"/dispatch/a b?ver=1");
    EXPECT_EQ(fetched.body, "{\"Version\":1}") << fetched.error;
    EXPECT_THAT(server.request(), testing::StartsWith("GET /dispatch/a%20b?ver=1 HTTP/1.1\r\n"));
    EXPECT_THAT(server.request(), testing::HasSubstr("Accept: application/json\r\n"));
    EXPECT_THAT(server.request(), testing::HasSubstr("User-Agent: Zelmark girder Library win7-compatible HTTP client. "
                                                     "Version 1.0\r\n"));
}

TEST_F(http_session_test, downloads_a_file)
{
    std::string content(150'000, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 31 >> 3);
    std::ofstream(file_) << "old";
    const scripted_server server(answer("200 OK", content), close);
    const outcome downloaded = download(server.base());
    EXPECT_TRUE(downloaded.body == content) << downloaded.error;
    EXPECT_THAT(server.request(), testing::HasSubstr("Accept: */*\r\n"));
}

TEST_F(http_session_test, every_answer_ends_clearly_for_documents_and_files)
{
    struct answer_case {
        const char* name;
        std::string answer;
        scripted_server::after_answer then;
        std::optional<std::string> body;
        std::uint32_t error;
    };
    const answer_case rows[] = {
        {"empty_body", answer("200 OK", ""), close, "", 0},
        {"chunks", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n1\r\nc\r\n0\r\n\r\n", close, "abc",
         0},
        {"body_until_the_end_of_the_connection", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nabc", close, "abc", 0},
        {"no_content", "HTTP/1.1 204 No Content\r\n\r\n", close, std::nullopt, 0x80070057},
        {"no_answer", "", close, std::nullopt, 0x80070057},
        {"short_body", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc", close, std::nullopt,
         ERROR_INTERNET_CONNECTION_ABORTED},
        {"too_large_without_announcement", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + std::string(200'001, 'x'),
         close, std::nullopt, ERROR_FILE_TOO_LARGE},
        {"silence_before_the_head", "", hold_open, std::nullopt, ERROR_INTERNET_TIMEOUT},
        {"silence_in_the_body", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc", hold_open, std::nullopt,
         ERROR_INTERNET_TIMEOUT},
    };
    for (const answer_case& row : rows) {
        SCOPED_TRACE(row.name);
        {
            const scripted_server server(row.answer, row.then);
            const outcome fetched = fetch(server.base(), u"/");
            EXPECT_EQ(fetched.body, row.body);
            EXPECT_EQ(fetched.error, row.error);
        }
        const scripted_server server(row.answer, row.then);
        const outcome downloaded = download(server.base());
        EXPECT_EQ(downloaded.body, row.body);
        EXPECT_EQ(downloaded.error, row.error);
        EXPECT_EQ(std::filesystem::exists(file_), row.body.has_value());
        std::filesystem::remove(file_);
    }
}

TEST_F(http_session_test, a_document_may_be_as_large_as_the_limit)
{
    for (const std::size_t size : {1000U, 1001U}) {
        const scripted_server server(answer("200 OK", std::string(size, 'x')), close);
        EXPECT_EQ(fetch(server.base(), u"/").error, size > 1000 ? std::uint32_t{ERROR_FILE_TOO_LARGE} : 0);
    }
}

TEST_F(http_session_test, what_is_no_web_address_is_refused_at_once)
{
    for (const std::u16string url :
         {u"", u"/relative", u"foo:", u"ftp://127.0.0.1/", u"file:///c:/boot.ini", u"http://"})
        EXPECT_NE(fetch(u"", url).error, 0U) << std::string(url.begin(), url.end());
    EXPECT_NE(fetch(u"https://127.0.0.1/" + std::u16string(5000, u'x'), u"").error, 0U);
}

TEST_F(http_session_test, a_path_that_cannot_be_created_fails_with_its_own_error)
{
    const scripted_server server(answer("200 OK", "abc"), close);
    http::session session(server.base(), small_limits);
    ASSERT_TRUE(session.open());
    const auto start = [&] { return download(session, file_ / "below a file that is not there"); };
    EXPECT_EQ(outcome_of(start).error, std::uint32_t{ERROR_PATH_NOT_FOUND});
}

TEST_F(http_session_test, cancelling_ends_a_transfer_at_once)
{
    for (const std::string begun : {"", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc"}) {
        const scripted_server server(begun, hold_open);
        girder::cancellation_source cancel;
        const std::jthread canceller([&cancel] {
            ::Sleep(50);
            cancel.request();
        });
        const auto start = std::chrono::steady_clock::now();
        EXPECT_TRUE(fetch(server.base(), u"/", cancel.get()).cancelled);
        EXPECT_LT(std::chrono::steady_clock::now() - start, small_limits.silence);
    }
    girder::cancellation_source cancelled_before;
    cancelled_before.request();
    EXPECT_TRUE(fetch(u"http://127.0.0.1:9", u"/", cancelled_before.get()).cancelled);
}

} // namespace
