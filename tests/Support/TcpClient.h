#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <QByteArray>
#include <QtGlobal>

#include "TestLoop.h"

namespace corvellan::test {

/// A client on a plain socket, for what Qt's own sockets never do: ending one side alone, resetting, sending
/// a byte and waiting. Sends what fits at once.
class TcpClient {
public:
    explicit TcpClient(quint16 port, const char* address = "127.0.0.1") : m_socket(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(port);
        ::inet_pton(AF_INET, address, &to.sin_addr);
        m_isConnected = ::connect(m_socket, reinterpret_cast<const sockaddr*>(&to), sizeof to) == 0;
        m_error = m_isConnected ? 0 : errno;
    }
    ~TcpClient() {
        if (m_socket >= 0)
            ::close(m_socket);
    }
    TcpClient(TcpClient&& other) noexcept { *this = std::move(other); }
    TcpClient& operator=(TcpClient&& other) noexcept {
        std::swap(m_socket, other.m_socket);
        std::swap(m_isConnected, other.m_isConnected);
        std::swap(m_error, other.m_error);
        std::swap(m_received, other.m_received);
        std::swap(m_isEnded, other.m_isEnded);
        return *this;
    }

    [[nodiscard]] bool isConnected() const { return m_isConnected; }
    [[nodiscard]] int error() const { return m_error; }

    void send(const QByteArray& bytes) const {
        std::ignore = ::send(m_socket, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
    }
    /// Sends no more, and still reads.
    void finish() const { ::shutdown(m_socket, SHUT_WR); }
    void close() {
        ::close(m_socket);
        m_socket = -1;
    }
    void reset() {
        const linger now{.l_onoff = 1, .l_linger = 0};
        ::setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &now, sizeof now);
        close();
    }

    /// All that has come so far.
    const QByteArray& received() {
        std::array<char, 4096> bytes;
        while (!m_isEnded) {
            const auto count = ::recv(m_socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
            if (count > 0) {
                m_received.append(bytes.data(), count);
                continue;
            }
            if (count < 0 && (errno == EAGAIN || errno == EINTR))
                break;
            m_isEnded = true;
            m_error = count < 0 ? errno : 0;
        }
        return m_received;
    }
    /// The other side has closed the connection; `error` tells how, 0 for an orderly end.
    [[nodiscard]] bool isEnded() {
        received();
        return m_isEnded;
    }
    /// What came until the other side closed.
    QByteArray receivedToTheEnd() {
        if (!spinUntil([this] { return isEnded(); }))
            return "the connection stays open";
        return m_received;
    }

private:
    int m_socket = -1;
    bool m_isConnected = false;
    int m_error = 0;
    QByteArray m_received;
    bool m_isEnded = false;
};

}  // namespace corvellan::test
