#pragma once

#include <QAbstractListModel>
#include <QQmlEngine>
#include <vector>

#include "Services/Protocols/SessionStoreProtocol.h"
#include "Views/History/DateSections.h"

namespace corvellan {

/// The rows of the history, made of the resident index as they are asked for, so that a list of a hundred
/// thousand costs what a screenful does. Main thread.
class SessionListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Part of a view state")

public:
    enum Role {
        titleRole = Qt::UserRole + 1,
        titleColorRole,    ///< By name; empty for the one of ordinary text.
        scoreRole,         ///< "4/6"; empty for a cold call.
        scoreColorRole,    ///< By name.
        scoreOpacityRole,  ///< 0 to 1.
        symbolRole,        ///< In place of the score; empty where there is one.
        isTrainingRole,
        badgeRole,       ///< The audience; empty for a direct sale.
        badgeColorRole,  ///< By name.
        durationRole,
        turnsRole,
        sectionRole,  ///< The label of the day.
        spokenRole,   ///< All of it in one sentence.
    };

    using QAbstractListModel::QAbstractListModel;

    /// What is at the same place in both lists stays there: rows that are shown are not made anew.
    ///
    /// \param filtered places in `records`.
    void assign(SessionStoreProtocol::Index records, RecordPlaces filtered, std::vector<DateSection> sections);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// \param row one that there is.
    [[nodiscard]] const SessionIndexEntry& record(int row) const;
    /// -1 for none of that id.
    [[nodiscard]] int rowOf(QUuid id) const;

    // The rules, pure.

    /// The company, else the scenario, else nothing.
    [[nodiscard]] static QString title(const SessionIndexEntry& record);
    /// "Channel"; empty for a direct sale, which has no badge.
    [[nodiscard]] static QString badge(AudienceType audience);

private:
    [[nodiscard]] const QString& section(int row) const;
    [[nodiscard]] QString spoken(int row) const;

    SessionStoreProtocol::Index m_records = std::make_shared<const std::vector<SessionIndexEntry>>();
    RecordPlaces m_filtered;
    std::vector<DateSection> m_sections;
};

}  // namespace corvellan
