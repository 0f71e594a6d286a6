#include "CallbackListener.h"

#include "AuthError.h"
#include "CallbackRequest.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

// A browser's request is always longer than 64 bytes, and what matters of it comes early.
constexpr LoopbackListener::Limits limits{.minimumBytes = 64, .maximumBytes = 4096, .waitingConnections = 64};

std::unexpected<Error> failure(AuthError error) {
    return std::unexpected<Error>{std::move(error)};
}

}  // namespace

CallbackListener::CallbackListener(std::unique_ptr<LoopbackListener> listener, Executor& executor, Clock& clock)
    : CallbackListener(std::move(listener), executor, clock, Stream::make()) {}

CallbackListener::CallbackListener(std::unique_ptr<LoopbackListener> listener, Executor& executor, Clock& clock,
                                   std::pair<Stream, Stream::Producer> ends)
    : m_outcomes(std::move(ends.first)),
      m_delivery(std::move(ends.second)),
      m_timeout(executor, clock),
      m_listener(std::move(listener)) {}

void CallbackListener::start() {
    m_timeout.set(patience, [this] { m_delivery.push(failure({.kind = AuthError::Kind::cancelled, .message = {}})); });
    m_listener->start(port, limits,
                      {.serve = [this](const QByteArray& received) { return serve(received); },
                       .failed =
                           [this](const Error& error) {
                               m_delivery.push(failure({.kind = AuthError::Kind::tokenExchangeFailed,
                                                        .message = u"Listener failed: "_s + error.errorDescription()}));
                           }});
}

void CallbackListener::stop() {
    m_timeout.cancel();
    m_listener.reset();
}

QCoro::Task<CallbackOutcome> CallbackListener::outcome(std::stop_token stop) {
    const auto next = co_await m_outcomes.next(std::move(stop));
    if (!next || !*next)
        co_return std::unexpected(Error::cancelled());
    co_return **next;
}

QByteArray CallbackListener::serve(const QByteArray& received) const {
    const auto code = callback::code(received);
    if (!code) {
        m_delivery.push(failure(code.error()));
        return {};
    }
    if (*code)
        m_delivery.push(**code);
    return callback::answer();
}

}  // namespace corvellan
