#pragma once

#include <optional>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariantMap>
#include <vector>

namespace corvellan::test {

/// One row as a desktop's panel learns of it.
struct ShownRow {
    int id = 0;
    QString type;
    QString label;
    bool isEnabled = true;
    bool isVisible = true;
    bool isToggle = false;
    QStringList shortcut;
};

/// What a desktop's panel does with a status notifier: reads its properties, shows its menu, and passes
/// presses on. Works from the process of the item as from any other: the main loop runs while it waits.
class DBusMenuClient {
public:
    explicit DBusMenuClient(QString service) : m_service(std::move(service)) {}

    /// What the watcher knows of, in order; empty when there is no watcher.
    [[nodiscard]] static QStringList registeredItems();
    /// Throws when nobody answers, as all that follow do.
    static QDBusMessage call(QDBusMessage message);

    [[nodiscard]] QVariantMap properties() const;
    /// Its title, from among the properties.
    [[nodiscard]] QString toolTipTitle() const;
    /// Of the icon, in pixels, in the order that they are told.
    [[nodiscard]] std::vector<int> iconWidths() const;
    /// The rows, from top to bottom.
    [[nodiscard]] std::vector<ShownRow> layout() const;
    /// Presses the row with this label, mnemonic marks left out.
    void press(const QString& title) const;
    void activate() const;

private:
    [[nodiscard]] QString menuPath() const;

    QString m_service;
};

/// A label without the marks of the menu protocol.
[[nodiscard]] QString withoutMnemonic(const QString& label);

}  // namespace corvellan::test
