#include "DamagedStore.h"

#include <array>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

// The log and the shared memory first: a new store beside an old log would take the log for its own.
const std::array parts{u"-wal"_s, u"-shm"_s, QString{}};

bool isFree(const QString& path) {
    for (const auto& part : parts)
        if (QFileInfo::exists(path + part))
            return false;
    return true;
}

QString freePath(const QString& path, WallTime now) {
    const QFileInfo file{path};
    const auto stamp =
        QDateTime::fromMSecsSinceEpoch(now.time_since_epoch().count(), Qt::UTC).toString(u"yyyyMMdd-hhmmss"_s);
    const QString stem = file.absoluteDir().filePath(file.completeBaseName() + u".damaged-"_s + stamp);
    const QString suffix = file.suffix().isEmpty() ? QString{} : u'.' + file.suffix();
    QString candidate = stem + suffix;
    for (int number = 2; !isFree(candidate); ++number)
        candidate = stem + u'-' + QString::number(number) + suffix;
    return candidate;
}

}  // namespace

std::optional<QString> setAside(const QString& path, WallTime now) {
    QString target = freePath(path, now);
    for (const auto& part : parts) {
        // `rename` refuses to overwrite.
        if (QFileInfo::exists(path + part) && !QFile::rename(path + part, target + part))
            return std::nullopt;
    }
    return target;
}

}  // namespace corvellan
