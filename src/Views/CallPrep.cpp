#include "CallPrep.h"

#include "Base/Text.h"
#include "Theme.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestNotes = 1000;
/// From here on the counter warns.
constexpr qsizetype longNotes = 901;

}  // namespace

CallPrep::CallPrep(QObject* parent)
    : QObject(parent),
      m_goals({"symbol", "label", "colorName", "isSelected"}, static_cast<int>(callGoalRows.size())) {
    updateGoals();
}

void CallPrep::setCallPrepNotes(const QString& notes) {
    const QString kept = text::prefix(notes, longestNotes);
    if (m_callPrepNotes == kept && kept == notes)
        return;
    m_callPrepNotes = kept;
    Q_EMIT callPrepNotesChanged();
}

QString CallPrep::notesCounter() const {
    return u"%1/%2"_s.arg(text::count(m_callPrepNotes)).arg(longestNotes);
}

QString CallPrep::notesCounterColor() const {
    return colorName(text::count(m_callPrepNotes) >= longNotes ? ColorRole::orange : ColorRole::gray);
}

void CallPrep::toggleGoal(int row) {
    if (row < 0 || row >= static_cast<int>(callGoalRows.size()))
        return;
    const CallGoal goal = callGoalRows.at(static_cast<std::size_t>(row)).value;
    if (m_selectedGoals.erase(goal) == 0)
        m_selectedGoals.insert(goal);
    updateGoals();
}

void CallPrep::updateGoals() {
    std::vector<FixedRowsModel::Row> rows;
    for (const CallGoalRow& row : callGoalRows)
        rows.push_back({icon(row.value), label(row.value), colorName(row.color), m_selectedGoals.contains(row.value)});
    m_goals.assign(rows);
}

std::optional<QString> CallPrep::currentCallNotes() const {
    const QString notes = text::trimmed(m_callPrepNotes);
    return notes.isEmpty() ? std::nullopt : std::optional{notes};
}

std::optional<std::vector<CallGoal>> CallPrep::currentGoals() const {
    if (m_selectedGoals.empty())
        return std::nullopt;
    return std::vector<CallGoal>{m_selectedGoals.begin(), m_selectedGoals.end()};
}

}  // namespace corvellan
