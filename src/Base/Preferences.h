#pragma once

#include <map>
#include <optional>
#include <QString>
#include <variant>

namespace corvellan {

/// The user's key-value store. A key that is absent, or holds something of another type, reads as
/// empty. Main thread.
class Preferences {
public:
    virtual ~Preferences() = default;

    [[nodiscard]] virtual std::optional<bool> boolean(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<double> number(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<QString> string(const QString& key) const = 0;

    virtual void setBoolean(const QString& key, bool value) = 0;
    virtual void setNumber(const QString& key, double value) = 0;
    virtual void setString(const QString& key, const QString& value) = 0;
};

/// Preferences that live as long as the object.
class MemoryPreferences final : public Preferences {
public:
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const override { return get<bool>(key); }
    [[nodiscard]] std::optional<double> number(const QString& key) const override { return get<double>(key); }
    [[nodiscard]] std::optional<QString> string(const QString& key) const override { return get<QString>(key); }

    void setBoolean(const QString& key, bool value) override { m_values.insert_or_assign(key, value); }
    void setNumber(const QString& key, double value) override { m_values.insert_or_assign(key, value); }
    void setString(const QString& key, const QString& value) override { m_values.insert_or_assign(key, value); }

private:
    template <typename T>
    std::optional<T> get(const QString& key) const {
        const auto found = m_values.find(key);
        if (found == m_values.end())
            return std::nullopt;
        const auto* const value = std::get_if<T>(&found->second);
        return value ? std::optional{*value} : std::nullopt;
    }

    std::map<QString, std::variant<bool, double, QString>> m_values;
};

}  // namespace corvellan
