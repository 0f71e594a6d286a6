#include "FrameBook.h"

#include <algorithm>
#include <QJsonObject>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

void FrameBook::keep(SharedFrame frame) {
    auto& figures = m_figures[frame.sessionId];
    ++figures.frames;
    figures.bytes += frame.jpeg.size();
    figures.lastHash = frame.hash;
    m_kept.push_back(std::move(frame));
    if (m_kept.size() > mostKept)
        m_kept.pop_front();
}

const SharedFrame* FrameBook::last(const QString& sessionId) const {
    const auto found = std::find_if(m_kept.rbegin(), m_kept.rend(),
                                    [&](const SharedFrame& frame) { return frame.sessionId == sessionId; });
    return found == m_kept.rend() ? nullptr : &*found;
}

QJsonArray FrameBook::figures() const {
    QJsonArray array;
    for (const auto& [sessionId, figures] : m_figures) {
        const auto kept = std::ranges::count(m_kept, sessionId, &SharedFrame::sessionId);
        array.append(QJsonObject{{u"session_id"_s, sessionId},
                                 {u"frames"_s, figures.frames},
                                 {u"refused"_s, figures.refused},
                                 {u"bytes"_s, figures.bytes},
                                 // As text: JSON's readers round such numbers.
                                 {u"last_hash"_s, QString::number(figures.lastHash)},
                                 {u"kept"_s, static_cast<int>(kept)}});
    }
    return array;
}

}  // namespace corvellan::sandbox
