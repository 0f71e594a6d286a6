#pragma once

#include <optional>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace corvellan::sandbox {

/// Reads one object of a data file; the first thing that is wrong stays, as a sentence that names the place.
/// Nothing of it throws or asserts.
class EntryReader {
public:
    /// Of any list. A longer one is no list that a person has written.
    static constexpr qsizetype mostEntries = 10'000;

    EntryReader(const QJsonValue& value, QString place);

    /// With something in it.
    [[nodiscard]] QString text(const QString& key);
    [[nodiscard]] std::optional<QString> optionalText(const QString& key);
    [[nodiscard]] QStringList texts(const QString& key);
    /// At least one text.
    [[nodiscard]] QStringList someTexts(const QString& key);
    [[nodiscard]] bool flag(const QString& key);
    [[nodiscard]] std::optional<int> optionalNumber(const QString& key, int lowest, int highest);
    [[nodiscard]] int number(const QString& key, int lowest, int highest, std::optional<int> otherwise = {});
    [[nodiscard]] QJsonObject object(const QString& key);
    [[nodiscard]] QJsonArray array(const QString& key);
    [[nodiscard]] bool has(const QString& key) const { return m_object.contains(key); }

    void fail(const QString& key, const QString& expected);
    /// Takes over what went wrong in a part of this entry.
    void adopt(const EntryReader& part);
    /// What goes out as a `Record` must read as one.
    template <typename Record>
    void check(const QString& key, const QJsonObject& sent) {
        const auto decoded = Record::decode(QJsonDocument{sent}.toJson(QJsonDocument::Compact));
        if (!decoded && !m_problem)
            m_problem = QStringLiteral("%1: %2: %3").arg(m_place, key, decoded.error().errorDescription());
    }
    [[nodiscard]] const std::optional<QString>& problem() const { return m_problem; }
    [[nodiscard]] const QString& place() const { return m_place; }

private:
    QString m_place;
    QJsonObject m_object;
    std::optional<QString> m_problem;
};

}  // namespace corvellan::sandbox
