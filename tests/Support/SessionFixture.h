#pragma once

#include <algorithm>
#include <QFile>

#include "SessionSurroundings.h"

namespace corvellan::test {

/// A whole session over fakes and a manual clock, on the main thread. Prepare `preferences`,
/// `memoryNote` and the like first; the view model is made at its first use.
class SessionFixture : public SessionSurroundings {
public:
    SessionFixture() = default;
    ~SessionFixture() {
        if (m_viewModel)
            quieten(*m_viewModel, m_given, factory);
    }
    SessionFixture(const SessionFixture&) = delete;
    SessionFixture& operator=(const SessionFixture&) = delete;

    SessionViewModel& session() {
        if (!m_viewModel)
            m_viewModel = std::make_unique<SessionViewModel>(environment(factory, QStringLiteral("1.2.3")),
                                                             m_given.takeWebSocket(), m_given.takeAudio(),
                                                             m_given.takeStt(), m_given.takeAuth());
        return *m_viewModel;
    }

    /// Starts and goes as far as the live phase.
    void goLive(StartRequest request = {}) {
        session().startSession(std::move(request));
        settle();
        ws->deliver(ServerMsg::Value{started()});
        settle();
        log.clear();
    }

    /// Some service was asked for this.
    [[nodiscard]] bool did(const std::string& step) const { return std::ranges::find(log, step) != log.end(); }

    /// The lines of the debug log, without their stamps.
    [[nodiscard]] QStringList debugLines() const {
        QFile file{debugLogPath()};
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        for (auto& line : lines)
            line.remove(0, QStringLiteral("2026-03-02 10:00:00 +0000 ").size());
        return lines;
    }

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
