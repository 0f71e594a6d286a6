#pragma once

#include <QAbstractListModel>
#include <QQmlEngine>
#include <QStringList>

#include "Models/Types.h"
#include "Views/History/TranscriptRole.h"

namespace corvellan {

/// The stored lines of a session. Each is taken apart when it is shown. Main thread.
class StoredTranscriptModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Part of a view state")

public:
    /// Colours by name; that of the text is empty for the one of ordinary text.
    enum Role { tagRole = Qt::UserRole + 1, tagColorRole, textRole, textColorRole, textOpacityRole, spokenRole };

    /// How a role's lines look.
    struct Look {
        QString tag;
        ColorRole tagColor;
        QString textColor;
        double textOpacity;
        QString spoken;  ///< The tag in words.
    };
    [[nodiscard]] static const Look& look(TranscriptRole role);

    using QAbstractListModel::QAbstractListModel;

    void assign(const QStringList& lines);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QStringList m_lines;
};

}  // namespace corvellan
