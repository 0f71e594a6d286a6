#include "SessionFixture.h"

#include <algorithm>
#include <QFile>

namespace corvellan::test {

SessionFixture::SessionFixture() = default;

SessionFixture::~SessionFixture() {
    if (m_viewModel)
        quieten(*m_viewModel, m_given, factory);
}

SessionViewModel& SessionFixture::session() {
    if (!m_viewModel)
        m_viewModel =
            std::make_unique<SessionViewModel>(environment(factory, QStringLiteral("1.2.3")), m_given.takeWebSocket(),
                                               m_given.takeAudio(), m_given.takeStt(), m_given.takeAuth());
    return *m_viewModel;
}

void SessionFixture::goLive(StartRequest request) {
    session().startSession(std::move(request));
    settle();
    ws->deliver(ServerMsg::Value{started()});
    settle();
    log.clear();
}

bool SessionFixture::did(const std::string& step) const {
    return std::ranges::find(log, step) != log.end();
}

QStringList SessionFixture::debugLines() const {
    QFile file{debugLogPath()};
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (auto& line : lines)
        line.remove(0, QStringLiteral("2026-03-02 10:00:00 +0000 ").size());
    return lines;
}

}  // namespace corvellan::test
