#pragma once

#include <chrono>
#include <expected>
#include <memory>
#include <QString>
#include <stop_token>

#include "Base/AsyncStream.h"
#include "Base/Error.h"
#include "Base/Log.h"
#include "Platform/LoopbackListener.h"
#include "Services/Alarm.h"

namespace corvellan {

/// The code that the browser brought back, or why there is none.
using CallbackOutcome = std::expected<QString, Error>;

/// Waits on a port of this machine for the browser to come back from the authorization server. One outcome:
/// the first that is delivered, by whomever. On the executor's thread.
///
/// Every request gets the same page as its answer. One without a code changes nothing; one that brings
/// nothing, or no text, ends the wait.
class CallbackListener {
public:
    static constexpr quint16 port = 9876;
    static constexpr std::chrono::seconds patience{120};

    /// \param listener not started yet. The executor and the clock must outlive this object.
    CallbackListener(std::unique_ptr<LoopbackListener> listener, Executor& executor, Clock& clock);
    CallbackListener(const CallbackListener&) = delete;
    CallbackListener& operator=(const CallbackListener&) = delete;

    /// From now on. A port that is in use is an outcome.
    void start();
    /// The port is free again, and no outcome comes from here any more.
    void stop();

    /// To deliver an outcome from elsewhere, on any thread, also when this object has gone.
    [[nodiscard]] const AsyncStream<CallbackOutcome>::Producer& delivery() const { return m_delivery; }

    /// The outcome; cancelled when `stop` is requested. Once; the object must last until then.
    [[nodiscard]] QCoro::Task<CallbackOutcome> outcome(std::stop_token stop);

private:
    using Stream = AsyncStream<CallbackOutcome>;

    CallbackListener(std::unique_ptr<LoopbackListener> listener, Executor& executor, Clock& clock,
                     std::pair<Stream, Stream::Producer> ends);
    [[nodiscard]] QByteArray serve(const QByteArray& received) const;

    Stream m_outcomes;
    Stream::Producer m_delivery;
    Alarm m_timeout;
    std::unique_ptr<LoopbackListener> m_listener;
};

}  // namespace corvellan
