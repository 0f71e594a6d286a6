#include "TrayMenu.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

namespace corvellan {

namespace {

constexpr QChar mnemonicMark = u'&';

}  // namespace

QString menuText(const QString& title, QChar key) {
    QString text;
    bool isKeyMarked = key.isNull();
    for (const QChar letter : title) {
        if (!isKeyMarked && letter.toCaseFolded() == key.toCaseFolded()) {
            text += mnemonicMark;
            isKeyMarked = true;
        }
        if (letter == mnemonicMark)
            text += mnemonicMark;
        text += letter;
    }
    return text;
}

std::unique_ptr<QMenu> makeTrayMenu(const std::vector<StatusMenuItem>& rows) {
    auto menu = std::make_unique<QMenu>();
    for (const auto& row : rows) {
        if (row.title.isEmpty()) {
            menu->addSeparator();
            continue;
        }
        QAction* const action = menu->addAction(menuText(row.title, row.key));
        if (!row.key.isNull()) {
            action->setShortcut(QKeySequence{row.key.toUpper().unicode()});
            action->setShortcutVisibleInContextMenu(true);
        }
        if (row.action)
            QObject::connect(action, &QAction::triggered, action, row.action);
    }
    return menu;
}

}  // namespace corvellan
