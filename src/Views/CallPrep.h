#pragma once

#include <optional>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <set>
#include <vector>

#include "FixedRowsModel.h"
#include "Models/Protocol.h"

namespace corvellan {

/// What the user prepares for the next call: notes and goals. Both are kept over calls. Main thread.
class CallPrep : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the home screen's state")

    Q_PROPERTY(QString callPrepNotes READ callPrepNotes WRITE setCallPrepNotes NOTIFY callPrepNotesChanged)
    /// "950/1000".
    Q_PROPERTY(QString notesCounter READ notesCounter NOTIFY callPrepNotesChanged)
    Q_PROPERTY(QString notesCounterColor READ notesCounterColor NOTIFY callPrepNotesChanged)
    /// Rows of "symbol", "label", "colorName" and "isSelected".
    Q_PROPERTY(QAbstractItemModel* goals READ goals CONSTANT)

public:
    explicit CallPrep(QObject* parent = nullptr);

    [[nodiscard]] const QString& callPrepNotes() const { return m_callPrepNotes; }
    /// Keeps the first 1,000 characters, and tells of the change whenever it has cut something.
    void setCallPrepNotes(const QString& notes);
    [[nodiscard]] QString notesCounter() const;
    [[nodiscard]] QString notesCounterColor() const;
    [[nodiscard]] FixedRowsModel* goals() { return &m_goals; }
    [[nodiscard]] const std::set<CallGoal>& selectedGoals() const { return m_selectedGoals; }
    Q_INVOKABLE void toggleGoal(int row);

    /// The notes without white space round them; absent when nothing is left.
    [[nodiscard]] std::optional<QString> currentCallNotes() const;
    /// In the goals' own order; absent when none is selected.
    [[nodiscard]] std::optional<std::vector<CallGoal>> currentGoals() const;

Q_SIGNALS:
    void callPrepNotesChanged();

private:
    void updateGoals();

    QString m_callPrepNotes;
    std::set<CallGoal> m_selectedGoals;
    FixedRowsModel m_goals;
};

}  // namespace corvellan
