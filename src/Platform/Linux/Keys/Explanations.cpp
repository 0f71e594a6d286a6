#include "Explanations.h"

using namespace Qt::StringLiterals;

namespace corvellan {

QString shortcutUnavailable(const QString& reason) {
    return u"The shortcut does not work in other programs: "_s + reason +
           u". Start and end coaching in the window or from the tray icon's menu instead."_s;
}

}  // namespace corvellan
