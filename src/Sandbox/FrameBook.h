#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <QByteArray>
#include <QJsonArray>
#include <QString>

#include "Base/Clock.h"

namespace corvellan::sandbox {

/// One picture of a user's screen.
struct SharedFrame {
    QString sessionId;
    std::uint64_t hash = 0;
    QByteArray jpeg;
    WallTime arrivedAt{};
};

/// The pictures that clients have shared: counted, and the last of them kept, in memory alone. Nothing here is
/// ever written to a disk. One thread.
class FrameBook {
public:
    static constexpr std::size_t mostKept = 8;
    static constexpr qsizetype longestFrame = 8 * 1024 * 1024;

    void keep(SharedFrame frame);
    /// One that was not as it should be.
    void refuse(const QString& sessionId) { ++m_figures[sessionId].refused; }

    /// The last picture of a session. Null when it is no longer kept.
    [[nodiscard]] const SharedFrame* last(const QString& sessionId) const;
    /// What came, one entry a session.
    [[nodiscard]] QJsonArray figures() const;

private:
    struct Figures {
        int frames = 0;
        int refused = 0;
        qint64 bytes = 0;
        std::uint64_t lastHash = 0;
    };

    std::deque<SharedFrame> m_kept;
    std::map<QString, Figures> m_figures;
};

}  // namespace corvellan::sandbox
