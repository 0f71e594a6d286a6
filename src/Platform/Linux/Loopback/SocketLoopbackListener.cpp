#include "SocketLoopbackListener.h"

#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <QSocketNotifier>
#include <utility>

namespace corvellan {

namespace {

/// One open file of the system's, closed when it goes.
class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor() {
        if (isOpen())
            ::close(m_descriptor);
    }

    [[nodiscard]] int get() const { return m_descriptor; }
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }

private:
    int m_descriptor;
};

Error systemError() {
    return TransportError{qt_error_string(errno)};
}

/// Sends `answer` as the last thing, and makes sure that closing does not take it back.
void answerAndEnd(int socket, const QByteArray& answer) {
    // It fits into an empty socket's buffer.
    std::ignore =
        ::send(socket, answer.constData(), static_cast<std::size_t>(answer.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
    ::shutdown(socket, SHUT_WR);
    // A socket that is closed with bytes unread resets the connection, and the client may lose the answer:
    // browsers send more than is looked at when they have many cookies.
    constexpr int mostPieces = 64;
    std::array<char, 4096> rest;
    for (int piece = 0; piece < mostPieces; ++piece)
        if (::recv(socket, rest.data(), rest.size(), MSG_DONTWAIT) <= 0)
            break;
}

class SocketLoopbackListener final : public LoopbackListener {
public:
    SocketLoopbackListener(FileDescriptor listening, FileDescriptor events)
        : m_listening(std::move(listening)),
          m_events(std::move(events)) {}

    void start(quint16 port, Limits limits, Handlers handlers) override {
        m_limits = limits;
        m_handlers = std::move(handlers);
        const int one = 1;
        // Connections that were closed a moment ago must not keep the port; who listens still does.
        ::setsockopt(m_listening.get(), SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::bind(m_listening.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(m_listening.get(), SOMAXCONN) != 0 || !watch(m_listening.get(), EPOLLIN)) {
            fail();
            return;
        }
        m_notifier = std::make_unique<QSocketNotifier>(m_events.get(), QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { work(); });
    }

private:
    [[nodiscard]] bool watch(int socket, std::uint32_t what) {
        epoll_event event{};
        event.events = what;
        event.data.fd = socket;
        return ::epoll_ctl(m_events.get(), EPOLL_CTL_ADD, socket, &event) == 0;
    }

    void fail() {
        const Error error = systemError();
        m_listening = FileDescriptor{};
        m_handlers.failed(error);
    }

    /// Some of what is due; the notifier calls again for the rest, so that the thread's other work goes on
    /// under a flood.
    void work() {
        constexpr int mostAtOnce = 64;
        for (int i = 0; i < mostAtOnce; ++i) {
            // One at a time: a number of a closed socket may come up again with the next.
            epoll_event event{};
            if (::epoll_wait(m_events.get(), &event, 1, 0) != 1)
                return;
            if (event.data.fd == m_listening.get())
                accept();
            else
                receive(event.data.fd, (event.events & (EPOLLRDHUP | EPOLLHUP | EPOLLERR)) != 0);
        }
    }

    void accept() {
        FileDescriptor socket{::accept4(m_listening.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK)};
        if (!socket.isOpen()) {
            const bool isPassing =
                errno == EINTR || errno == EAGAIN || errno == ECONNABORTED || errno == EPROTO || errno == EPERM;
            if (!isPassing)
                fail();
            return;
        }
        // The system itself wakes us only when so much is there.
        const int enough = static_cast<int>(m_limits.minimumBytes);
        ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVLOWAT, &enough, sizeof enough);
        if (!watch(socket.get(), EPOLLIN | EPOLLRDHUP))
            return;
        if (m_waiting.size() >= m_limits.waitingConnections)
            m_waiting.pop_front();
        m_waiting.push_back(std::move(socket));
    }

    void receive(int number, bool isAtEnd) {
        const auto found = std::ranges::find(m_waiting, number, &FileDescriptor::get);
        if (found == m_waiting.end())
            return;
        QByteArray bytes{m_limits.maximumBytes, Qt::Uninitialized};
        const auto wanted = static_cast<std::size_t>(bytes.size());
        const auto there = ::recv(number, bytes.data(), wanted, MSG_PEEK | MSG_DONTWAIT);
        const bool isTooEarly = there < 0 ? errno == EAGAIN || errno == EINTR : there < m_limits.minimumBytes;
        if (isTooEarly && !isAtEnd && there != 0)
            return;
        const FileDescriptor socket = std::move(*found);
        m_waiting.erase(found);
        bytes.truncate(std::max<qsizetype>(::recv(number, bytes.data(), wanted, MSG_DONTWAIT), 0));
        if (const QByteArray answer = m_handlers.serve(bytes); !answer.isEmpty())
            answerAndEnd(socket.get(), answer);
    }

    FileDescriptor m_listening;
    FileDescriptor m_events;
    Limits m_limits;
    Handlers m_handlers;
    std::deque<FileDescriptor> m_waiting;  ///< In the order of their arrival.
    std::unique_ptr<QSocketNotifier> m_notifier;
};

}  // namespace

std::expected<std::unique_ptr<LoopbackListener>, Error> SocketLoopbackListeners::make() {
    // What is started later, a browser for one, must not inherit the port.
    FileDescriptor listening{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)};
    if (!listening.isOpen())
        return std::unexpected(systemError());
    FileDescriptor events{::epoll_create1(EPOLL_CLOEXEC)};
    if (!events.isOpen())
        return std::unexpected(systemError());
    return std::make_unique<SocketLoopbackListener>(std::move(listening), std::move(events));
}

}  // namespace corvellan
