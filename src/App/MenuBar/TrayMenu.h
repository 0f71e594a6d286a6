#pragma once

#include <memory>
#include <QString>
#include <vector>

#include "Platform/StatusBar.h"

class QMenu;

namespace corvellan {

/// The title as a menu's text: an ampersand stands before the first letter that is `key`, so that the key
/// presses the row while the menu is open. What the user reads is the title itself.
[[nodiscard]] QString menuText(const QString& title, QChar key);

/// The rows as a menu. Keys press their rows while the menu is open, and are shown beside the titles; they
/// do nothing anywhere else. Needs the QApplication.
[[nodiscard]] std::unique_ptr<QMenu> makeTrayMenu(const std::vector<StatusMenuItem>& rows);

}  // namespace corvellan
