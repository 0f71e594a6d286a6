#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

class QQuickItem;

namespace corvellan::test {

/// Looks through a screen for what a person with a screen reader, without a mouse or with an unsteady hand would
/// stumble over.
class AccessibilityAudit : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// One line for each fault of what shows below `root`, which has to be in a window that is up: a control that
    /// assistive technology doesn't see, or without a name or a role; one that is smaller than 28 pixels; one that
    /// the Tab key does not come to. Choices of one group, rows of one list and the pages of one row of tabs count as
    /// reached when one of them is, or their list: arrow keys lead to the rest. Links within a note are as tall as
    /// its lines.
    ///
    /// Takes the keyboard to `root`, and moves it.
    Q_INVOKABLE [[nodiscard]] QStringList faultsIn(QQuickItem* root);
    /// How many controls show below `root`: none would make an audit worthless.
    Q_INVOKABLE [[nodiscard]] int controlsIn(QQuickItem* root);
};

}  // namespace corvellan::test
