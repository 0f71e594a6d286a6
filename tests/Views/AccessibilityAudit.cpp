#include "AccessibilityAudit.h"

#include <algorithm>
#include <array>
#include <QAccessible>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>
#include <vector>

#include "Views/Theme.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

/// More than any screen has stops for the Tab key.
constexpr int tabLimit = 300;

constexpr std::array controlRoles{QAccessible::Button,   QAccessible::CheckBox,     QAccessible::RadioButton,
                                  QAccessible::ComboBox, QAccessible::EditableText, QAccessible::PageTab,
                                  QAccessible::Link,     QAccessible::ListItem,     QAccessible::Slider,
                                  QAccessible::MenuItem, QAccessible::SpinBox};

QAccessible::Role roleOf(QQuickItem* item) {
    QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(item);
    return spoken ? spoken->role() : QAccessible::NoRole;
}

bool isMadeForInput(const QQuickItem& item) {
    if (item.inherits("QQuickAbstractButton") || item.inherits("QQuickComboBox") || item.inherits("QQuickSlider"))
        return true;
    const bool isText = item.inherits("QQuickTextInput") || item.inherits("QQuickTextEdit");
    return isText && !item.property("readOnly").toBool();
}

bool isListItemThatCannotBePressed(QQuickItem* item, QAccessible::Role role) {
    return role == QAccessible::ListItem && !isMadeForInput(*item);
}

bool isControl(QQuickItem* item) {
    const auto role = roleOf(item);
    if (isListItemThatCannotBePressed(item, role))
        return false;
    return isMadeForInput(*item) || std::ranges::find(controlRoles, role) != controlRoles.end();
}

void gather(QQuickItem* item, std::vector<QQuickItem*>& controls) {
    if (!item->isVisible() || item->opacity() <= 0)
        return;
    if (isControl(item))
        controls.push_back(item);
    for (QQuickItem* const child : item->childItems())
        gather(child, controls);
}

QString named(const QQuickItem& item) {
    QStringList path;
    for (const QQuickItem* above = &item; above; above = above->parentItem())
        if (!above->objectName().isEmpty())
            path.prepend(above->objectName());
    return u"%1 (%2)"_s.arg(path.join(u'/'), QString::fromLatin1(item.metaObject()->className()));
}

QSet<QQuickItem*> stopsOfTab(QQuickItem* root) {
    QQuickWindow* const window = root->window();
    root->forceActiveFocus(Qt::TabFocusReason);
    QSet<QQuickItem*> stops;
    for (int i = 0; i < tabLimit; ++i) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event{type, Qt::Key_Tab, Qt::NoModifier};
            QCoreApplication::sendEvent(window, &event);
        }
        QQuickItem* const stop = window->activeFocusItem();
        if (!stop || stops.contains(stop))
            break;
        stops.insert(stop);
    }
    return stops;
}

bool isInNote(const QQuickItem& item) {
    return item.parentItem() && roleOf(item.parentItem()) == QAccessible::Document;
}

/// `stop` is the list that `item` is a row of, or another row of it.
bool isRowOf(QQuickItem* item, QQuickItem* stop) {
    QQuickItem* const rows = item->parentItem();
    QQuickItem* const list = rows->parentItem();
    return list && list->inherits("QQuickListView") && (stop == list || stop->parentItem() == rows);
}

/// Through a neighbour of the same group, or the list round it.
bool isReachedByArrows(QQuickItem* item, const QSet<QQuickItem*>& stops) {
    const auto role = roleOf(item);
    if (role == QAccessible::RadioButton || role == QAccessible::PageTab) {
        const auto neighbours = item->parentItem()->childItems();
        return std::ranges::any_of(
            neighbours, [&](QQuickItem* neighbour) { return roleOf(neighbour) == role && stops.contains(neighbour); });
    }
    return std::ranges::any_of(stops, [item](QQuickItem* stop) { return isRowOf(item, stop); });
}

bool isInTree(QQuickItem* item) {
    const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(item);
    while (spoken && spoken->isValid()) {
        if (spoken->role() == QAccessible::Window)
            return true;
        // What is ignored knows its parent, but not the other way round.
        const QAccessibleInterface* const parent = spoken->parent();
        if (!parent || parent->indexOfChild(spoken) < 0)
            return false;
        spoken = parent;
    }
    return false;
}

QStringList faultsOf(QQuickItem* item, const QSet<QQuickItem*>& stops) {
    QStringList faults;
    const auto fault = [&](const QString& what) { faults.append(named(*item) + u": "_s + what); };
    const QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(item);
    if (!spoken || !isInTree(item)) {
        fault(u"unknown to screen readers"_s);
        return faults;
    }
    if (std::ranges::find(controlRoles, spoken->role()) == controlRoles.end())
        fault(u"no role of a control, but %1"_s.arg(static_cast<int>(spoken->role())));
    if (spoken->text(QAccessible::Name).trimmed().isEmpty())
        fault(u"no name"_s);
    if (!isInNote(*item) && std::min(item->width(), item->height()) < Theme::hitTarget())
        fault(u"%1 by %2 is too small to hit"_s.arg(item->width()).arg(item->height()));
    if (item->isEnabled() && !stops.contains(item) && !isReachedByArrows(item, stops))
        fault(u"out of the Tab key's reach"_s);
    return faults;
}

}  // namespace

QStringList AccessibilityAudit::faultsIn(QQuickItem* root) {
    std::vector<QQuickItem*> controls;
    gather(root, controls);
    const auto stops = stopsOfTab(root);
    QStringList faults;
    for (QQuickItem* const item : controls)
        faults += faultsOf(item, stops);
    for (QQuickItem* const stop : stops)
        if (QAccessible::queryAccessibleInterface(stop) == nullptr ||
            QAccessible::queryAccessibleInterface(stop)->text(QAccessible::Name).trimmed().isEmpty())
            faults.append(named(*stop) + u": the Tab key stops at something without a name"_s);
    return faults;
}

int AccessibilityAudit::controlsIn(QQuickItem* root) {
    std::vector<QQuickItem*> controls;
    gather(root, controls);
    return static_cast<int>(controls.size());
}

}  // namespace corvellan::test
