#include "EntryReader.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

EntryReader::EntryReader(const QJsonValue& value, QString place)
    : m_place(std::move(place)),
      m_object(value.toObject()) {
    if (!value.isObject())
        m_problem = m_place + u": expected an object"_s;
}

QString EntryReader::text(const QString& key) {
    const QString found = m_object.value(key).toString();
    if (found.trimmed().isEmpty())
        fail(key, u"a text"_s);
    return found;
}

std::optional<QString> EntryReader::optionalText(const QString& key) {
    const auto value = m_object.value(key);
    if (!value.isUndefined() && !value.isNull() && !value.isString())
        fail(key, u"a text"_s);
    return value.isString() ? std::optional{value.toString()} : std::nullopt;
}

QStringList EntryReader::texts(const QString& key) {
    QStringList found;
    for (const auto& value : array(key)) {
        if (!value.isString())
            fail(key, u"texts"_s);
        found.append(value.toString());
    }
    return found;
}

QStringList EntryReader::someTexts(const QString& key) {
    const QStringList found = texts(key);
    if (found.isEmpty())
        fail(key, u"at least one text"_s);
    return found;
}

bool EntryReader::flag(const QString& key) {
    const auto value = m_object.value(key);
    if (!value.isBool())
        fail(key, u"true or false"_s);
    return value.toBool();
}

std::optional<int> EntryReader::optionalNumber(const QString& key, int lowest, int highest) {
    if (m_object.value(key).isUndefined())
        return std::nullopt;
    const qint64 found = m_object.value(key).toInteger(qint64{lowest} - 1);
    if (found < lowest || found > highest) {
        fail(key, u"a whole number from %1 to %2"_s.arg(lowest).arg(highest));
        return std::nullopt;
    }
    return static_cast<int>(found);
}

int EntryReader::number(const QString& key, int lowest, int highest, std::optional<int> otherwise) {
    if (m_object.value(key).isUndefined() && !otherwise)
        fail(key, u"a number"_s);
    return optionalNumber(key, lowest, highest).value_or(otherwise.value_or(lowest));
}

QJsonObject EntryReader::object(const QString& key) {
    if (!m_object.value(key).isUndefined() && !m_object.value(key).isObject())
        fail(key, u"an object"_s);
    return m_object.value(key).toObject();
}

QJsonArray EntryReader::array(const QString& key) {
    const auto value = m_object.value(key);
    if ((!value.isUndefined() && !value.isArray()) || value.toArray().size() > mostEntries)
        fail(key, u"a list"_s);
    return value.toArray();
}

void EntryReader::fail(const QString& key, const QString& expected) {
    if (!m_problem)
        m_problem = u"%1: %2: expected %3"_s.arg(m_place, key, expected);
}

void EntryReader::adopt(const EntryReader& part) {
    if (!m_problem)
        m_problem = part.m_problem;
}

}  // namespace corvellan::sandbox
