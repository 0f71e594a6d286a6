#include "SettingsPreferences.h"

#include <charconv>
#include <cmath>
#include <QStandardPaths>

#include "Text.h"

using namespace Qt::StringLiterals;

namespace corvellan {

SettingsPreferences::SettingsPreferences(const QString& filePath) : m_settings(filePath, QSettings::IniFormat) {}

QString SettingsPreferences::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/corvellan/bram.ini"_s;
}

std::optional<bool> SettingsPreferences::boolean(const QString& key) const {
    const auto text = string(key);
    if (text == u"true")
        return true;
    if (text == u"false")
        return false;
    return std::nullopt;
}

std::optional<double> SettingsPreferences::number(const QString& key) const {
    const auto text = string(key).value_or(QString{}).toLatin1();
    double value = 0;
    const auto [end, error] = std::from_chars(text.cbegin(), text.cend(), value);
    if (text.isEmpty() || error != std::errc{} || end != text.cend() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<QString> SettingsPreferences::string(const QString& key) const {
    const auto value = m_settings.value(key);
    // INI keeps a list where a hand-edited value holds commas; that is no string of ours.
    if (!value.isValid() || value.typeId() == QMetaType::QStringList)
        return std::nullopt;
    return value.toString();
}

void SettingsPreferences::setBoolean(const QString& key, bool value) {
    m_settings.setValue(key, value ? u"true"_s : u"false"_s);
}

void SettingsPreferences::setNumber(const QString& key, double value) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    m_settings.setValue(key, QString::fromLatin1(digits.data(), end.ptr - digits.data()));
}

void SettingsPreferences::setString(const QString& key, const QString& value) {
    m_settings.setValue(key, value);
}

}  // namespace corvellan
