#pragma once

#include <functional>
#include <memory>
#include <QChar>
#include <QString>
#include <vector>

namespace corvellan {

/// One row of a status item's menu; without a title, a separator.
struct StatusMenuItem {
    QString title;
    QChar key;  ///< Null where the row has none.
    std::function<void()> action;
};

/// The program's permanent icon in the desktop's bar, with a menu. It goes when it is destroyed. Main thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// \param symbol a name of the program's own symbol table.
    virtual void setImage(const QString& symbol, const QString& accessibilityDescription) = 0;
    /// Where a press on the icon itself doesn't open the menu, it does what the first row does.
    virtual void setMenu(std::vector<StatusMenuItem> menu) = 0;
};

/// Where the desktop shows status items.
class StatusBar {
public:
    virtual ~StatusBar() = default;

    /// Null where none can be made at all.
    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
    /// Whether somebody shows status items at present: a desktop's bar may come later, or never.
    [[nodiscard]] virtual bool isShown() const = 0;
};

}  // namespace corvellan
