#pragma once

#include <windows.h>
#include <winsock2.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace support {

/// An HTTP server on 127.0.0.1 that answers every request with the same bytes, whatever is asked.
class scripted_server {
public:
    enum class after_answer { close, hold_open };

    scripted_server(std::string answer, after_answer then)
        : answer_(std::move(answer)), then_(then), listening_(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        int size = sizeof address;
        ::bind(listening_, reinterpret_cast<const sockaddr*>(&address), size);
        ::listen(listening_, 8);
        ::getsockname(listening_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ::ntohs(address.sin_port);
        serving_ = std::jthread([this] { serve(); });
    }
    scripted_server(const scripted_server&) = delete;
    scripted_server& operator=(const scripted_server&) = delete;
    ~scripted_server()
    {
        ending_ = true;
        ::closesocket(listening_);
    }

    std::u16string base() const
    {
        const std::string port = std::to_string(port_);
        return u"http://127.0.0.1:" + std::u16string(port.begin(), port.end());
    }
    /// The head of the last request. To be read when it was answered.
    const std::string& request() const { return request_; }

private:
    void serve()
    {
        for (;;) {
            const SOCKET connection = ::accept(listening_, nullptr, nullptr);
            if (connection == INVALID_SOCKET)
                return;
            answer(connection);
            ::closesocket(connection);
        }
    }

    void answer(SOCKET connection)
    {
        std::string head;
        char byte = 0;
        while (!head.ends_with("\r\n\r\n") && ::recv(connection, &byte, 1, 0) == 1)
            head += byte;
        request_ = head;
        for (std::size_t sent = 0; sent < answer_.size();) {
            const int part = ::send(connection, answer_.data() + sent, static_cast<int>(answer_.size() - sent), 0);
            if (part <= 0)
                return;
            sent += static_cast<std::size_t>(part);
        }
        ::shutdown(connection, then_ == after_answer::close ? SD_SEND : SD_RECEIVE);
        while (then_ == after_answer::hold_open && !ending_)
            ::Sleep(5);
    }

    std::string answer_;
    after_answer then_;
    SOCKET listening_;
    unsigned port_ = 0;
    std::string request_;
    std::atomic<bool> ending_ = false;
    std::jthread serving_;
};

} // namespace support
