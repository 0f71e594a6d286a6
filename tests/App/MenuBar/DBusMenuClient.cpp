#include "DBusMenuClient.h"

#include <algorithm>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <stdexcept>

#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

const auto itemPath = u"/StatusNotifierItem"_s;
const auto itemInterface = u"org.kde.StatusNotifierItem"_s;
const auto menuInterface = u"com.canonical.dbusmenu"_s;
const auto propertiesInterface = u"org.freedesktop.DBus.Properties"_s;

ShownRow rowFrom(const QDBusArgument& argument) {
    ShownRow row;
    QVariantMap properties;
    argument.beginStructure();
    argument >> row.id >> properties;
    argument.endStructure();
    row.type = properties.value(u"type"_s, u"standard"_s).toString();
    row.label = properties.value(u"label"_s).toString();
    row.isEnabled = properties.value(u"enabled"_s, true).toBool();
    row.isVisible = properties.value(u"visible"_s, true).toBool();
    row.isToggle = !properties.value(u"toggle-type"_s).toString().isEmpty();
    if (const auto shortcut = properties.value(u"shortcut"_s); shortcut.isValid()) {
        const auto keys = shortcut.value<QDBusArgument>();
        keys.beginArray();
        while (!keys.atEnd()) {
            QStringList key;
            keys >> key;
            row.shortcut.append(key.join(u'+'));
        }
        keys.endArray();
    }
    return row;
}

}  // namespace

QDBusMessage DBusMenuClient::call(QDBusMessage message) {
    // A connection of its own: what a process tells itself on one connection never reaches the bus.
    static const auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"test-panel"_s);
    message.setAutoStartService(false);
    const auto pending = bus.asyncCall(message);
    if (!spinUntil([&] { return pending.isFinished(); }))
        throw std::runtime_error("no answer on the bus");
    const auto reply = pending.reply();
    if (reply.type() == QDBusMessage::ErrorMessage)
        throw std::runtime_error(reply.errorMessage().toStdString());
    return reply;
}

QStringList DBusMenuClient::registeredItems() {
    const auto watcher = u"org.kde.StatusNotifierWatcher"_s;
    auto message = QDBusMessage::createMethodCall(watcher, u"/StatusNotifierWatcher"_s, propertiesInterface, u"Get"_s);
    message.setArguments({watcher, u"RegisteredStatusNotifierItems"_s});
    try {
        return call(message).arguments().constFirst().value<QDBusVariant>().variant().toStringList();
    } catch (const std::runtime_error&) {
        return {};
    }
}

QVariantMap DBusMenuClient::properties() const {
    auto message = QDBusMessage::createMethodCall(m_service, itemPath, propertiesInterface, u"GetAll"_s);
    message.setArguments({itemInterface});
    return qdbus_cast<QVariantMap>(call(message).arguments().constFirst());
}

QString DBusMenuClient::toolTipTitle() const {
    const auto toolTip = properties().value(u"ToolTip"_s).value<QDBusArgument>();
    QString iconName;
    QString title;
    toolTip.beginStructure();
    toolTip >> iconName;
    toolTip.beginArray();
    while (!toolTip.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray pixels;
        toolTip.beginStructure();
        toolTip >> width >> height >> pixels;
        toolTip.endStructure();
    }
    toolTip.endArray();
    toolTip >> title;
    return title;
}

std::vector<int> DBusMenuClient::iconWidths() const {
    const auto images = properties().value(u"IconPixmap"_s).value<QDBusArgument>();
    std::vector<int> widths;
    images.beginArray();
    while (!images.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray pixels;
        images.beginStructure();
        images >> width >> height >> pixels;
        images.endStructure();
        if (pixels.size() == qsizetype{4} * width * height)
            widths.push_back(width);
    }
    images.endArray();
    return widths;
}

QString DBusMenuClient::menuPath() const {
    return properties().value(u"Menu"_s).value<QDBusObjectPath>().path();
}

std::vector<ShownRow> DBusMenuClient::layout() const {
    auto message = QDBusMessage::createMethodCall(m_service, menuPath(), menuInterface, u"GetLayout"_s);
    constexpr int wholeDepth = -1;
    message.setArguments({0, wholeDepth, QStringList{}});
    const auto root = call(message).arguments().at(1).value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    std::vector<ShownRow> rows;
    root.beginStructure();
    root >> id >> properties;
    root.beginArray();
    while (!root.atEnd()) {
        QDBusVariant child;
        root >> child;
        rows.push_back(rowFrom(child.variant().value<QDBusArgument>()));
    }
    root.endArray();
    root.endStructure();
    return rows;
}

void DBusMenuClient::press(const QString& title) const {
    const auto rows = layout();
    const auto row =
        std::ranges::find_if(rows, [&](const auto& shown) { return withoutMnemonic(shown.label) == title; });
    if (row == rows.end())
        throw std::runtime_error("no row " + title.toStdString());
    auto message = QDBusMessage::createMethodCall(m_service, menuPath(), menuInterface, u"Event"_s);
    message.setArguments({row->id, u"clicked"_s, QVariant::fromValue(QDBusVariant{0}), 0U});
    call(message);
}

void DBusMenuClient::activate() const {
    auto message = QDBusMessage::createMethodCall(m_service, itemPath, itemInterface, u"Activate"_s);
    message.setArguments({10, 10});
    call(message);
}

QString withoutMnemonic(const QString& label) {
    QString plain;
    for (qsizetype i = 0; i < label.size(); ++i) {
        // A mark stands before its letter; doubled, it is itself.
        if (label[i] == u'_' && ++i == label.size())
            break;
        plain += label[i];
    }
    return plain;
}

}  // namespace corvellan::test
