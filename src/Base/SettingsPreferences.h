#pragma once

#include <QSettings>

#include "Preferences.h"

namespace corvellan {

/// Preferences in an INI file in the user's configuration folder. A file that does not read counts
/// as empty and is replaced at the next write.
class SettingsPreferences final : public Preferences {
public:
    /// \param filePath of the INI file; its folder is made at the first write.
    explicit SettingsPreferences(const QString& filePath);

    /// "corvellan/bram.ini" in the user's configuration folder.
    [[nodiscard]] static QString defaultPath();

    [[nodiscard]] std::optional<bool> boolean(const QString& key) const override;
    [[nodiscard]] std::optional<double> number(const QString& key) const override;
    [[nodiscard]] std::optional<QString> string(const QString& key) const override;

    void setBoolean(const QString& key, bool value) override;
    void setNumber(const QString& key, double value) override;
    void setString(const QString& key, const QString& value) override;

private:
    QSettings m_settings;
};

}  // namespace corvellan
