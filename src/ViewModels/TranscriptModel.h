#pragma once

#include <QAbstractListModel>
#include <QUuid>
#include <vector>

#include "Base/Clock.h"
#include "Models/Types.h"

namespace corvellan {

/// Who said a line: the user, the other party (or the simulated buyer), the coach.
enum class TranscriptSource { mic, system, coach };

struct TranscriptLine {
    QUuid id;
    TranscriptSource source = TranscriptSource::mic;
    QString text;
    WallTime timestamp{};

    bool operator==(const TranscriptLine&) const = default;
};

/// "YOU", "THEM", "COACH".
[[nodiscard]] QString label(TranscriptSource source);
/// The colour of the label.
[[nodiscard]] Tint color(TranscriptSource source);

/// Everything said in a session, in order of arrival, without a limit. Appending costs the same at
/// the first line and at the hundred-thousandth. Main thread.
class TranscriptModel final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    /// `startsTurn`: somebody else said the line before.
    enum Role { textRole = Qt::UserRole + 1, sourceRole, labelRole, startsTurnRole };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return static_cast<int>(m_lines.size()); }
    [[nodiscard]] const std::vector<TranscriptLine>& lines() const { return m_lines; }

    void append(TranscriptLine line);
    void clear();

Q_SIGNALS:
    void countChanged();

private:
    std::vector<TranscriptLine> m_lines;
};

}  // namespace corvellan
