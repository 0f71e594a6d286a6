#pragma once

#include "SessionSurroundings.h"

namespace corvellan::test {

/// A whole session over fakes and a manual clock, on the main thread. Prepare `preferences`,
/// `memoryNote` and the like first; the view model is made at its first use.
class SessionFixture : public SessionSurroundings {
public:
    SessionFixture();
    ~SessionFixture();
    SessionFixture(const SessionFixture&) = delete;
    SessionFixture& operator=(const SessionFixture&) = delete;

    SessionViewModel& session();

    /// Starts and goes as far as the live phase.
    void goLive(StartRequest request = {});

    /// Some service was asked for this.
    [[nodiscard]] bool did(const std::string& step) const;

    /// The lines of the debug log, without their stamps.
    [[nodiscard]] QStringList debugLines() const;

    [[nodiscard]] QString error() { return session().errorMessage().value_or(QString{}); }

    CallLog log;
    FakeFactory factory{log};

private:
    FakeGivenServices m_given{log};

public:
    // Good for as long as the fixture lives: the session owns them once it is made.
    FakeWebSocket* ws = m_given.ws;
    FakeAudio* audio = m_given.audio;
    FakeStt* stt = m_given.stt;
    FakeAuth* auth = m_given.auth;

private:
    std::unique_ptr<SessionViewModel> m_viewModel;
};

}  // namespace corvellan::test
