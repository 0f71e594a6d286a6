#include "ApplicationIcon.h"

#include <QDir>

namespace corvellan {

using namespace Qt::StringLiterals;

QIcon applicationIcon() {
    // Pictures and no drawing: Qt's reader of SVG is a plugin of its own.
    QIcon icon;
    const QDir folder{u":/corvellan/icon"_s};
    for (const QString& name : folder.entryList(QDir::Files))
        icon.addFile(folder.filePath(name));
    return icon;
}

}  // namespace corvellan
