#include "QuickSetup.h"

#include <QQuickStyle>
#include <QQuickWindow>
#include <QSGRendererInterface>

// The module is linked in and has no plugin; this is the function that its build generates.
extern void qml_register_types_Corvellan_Views();

namespace corvellan {

void prepareQuick() {
    // A panel of text redraws a few times a second: drawing it costs less than an OpenGL context,
    // and a machine without a graphics driver shows the same.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    qml_register_types_Corvellan_Views();
}

}  // namespace corvellan
