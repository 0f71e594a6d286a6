#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <memory>
#include <QByteArray>
#include <QtGlobal>

#include "Base/Error.h"

namespace corvellan {

/// Takes connections to one port of 127.0.0.1, out of reach for other machines, and serves each of them
/// one exchange: something is received, something is answered, the connection is closed.
///
/// Lives on a thread with a Qt event loop. Stops listening and closes all connections when it goes, which
/// must not be within a handler.
class LoopbackListener {
public:
    struct Limits {
        /// Waits for so many bytes, or until the client sends no more.
        qsizetype minimumBytes = 1;
        /// What comes beyond this is dropped.
        qsizetype maximumBytes = 4096;
        /// Clients that have not sent enough yet. One more takes the place of the one that waited longest,
        /// which is closed without a call.
        std::size_t waitingConnections = 64;
    };
    struct Handlers {
        /// What a client has sent, empty when it went without a byte; once a connection. Returns the
        /// answer, a few hundred bytes; an empty one closes the connection without an answer.
        std::function<QByteArray(const QByteArray& received)> serve;
        /// Nothing is listened to any more, or never was: a port in use shows here. At most once, perhaps
        /// within `start`.
        std::function<void(const Error&)> failed;
    };

    virtual ~LoopbackListener() = default;

    /// Once.
    virtual void start(quint16 port, Limits limits, Handlers handlers) = 0;
};

/// Makes listeners.
class LoopbackListeners {
public:
    virtual ~LoopbackListeners() = default;

    /// Fails when the system has no resources for one.
    [[nodiscard]] virtual std::expected<std::unique_ptr<LoopbackListener>, Error> make() = 0;
};

}  // namespace corvellan
