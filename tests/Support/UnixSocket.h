#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <QByteArray>
#include <stdexcept>

namespace corvellan::test {

/// Whether somebody takes connections on the Unix socket at this path.
[[nodiscard]] inline bool isListeningAt(const QByteArray& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
        throw std::runtime_error("too long for a socket's path: " + path.toStdString());
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        throw std::runtime_error("no socket to be had");
    const bool isConnected = ::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    ::close(descriptor);
    return isConnected;
}

}  // namespace corvellan::test
