#include "XdgLoginItems.h"

#include <algorithm>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include "AutostartEntry.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

QString entryPath(const QString& configFolder) {
    return configFolder + u"/autostart/com.teskara.CorvellanBram.desktop"_s;
}

/// Also true for what can't be read, and for a link that leads nowhere.
bool isThere(const QString& path) {
    const QFileInfo info{path};
    return info.exists() || info.isSymLink();
}

bool isProgram(const QString& nameOrPath) {
    if (nameOrPath.contains(u'/')) {
        const QFileInfo info{nameOrPath};
        return info.isAbsolute() && info.isFile() && info.isExecutable();
    }
    return !nameOrPath.isEmpty() && !QStandardPaths::findExecutable(nameOrPath).isEmpty();
}

bool startsOn(const AutostartEntry& entry, const QStringList& desktop) {
    const auto isNamed = [&desktop](const QStringList& names) {
        return std::ranges::any_of(names, [&](const QString& name) { return desktop.contains(name); });
    };
    return !entry.isHidden && entry.isSwitchedOn && (entry.onlyShowIn.isEmpty() || isNamed(entry.onlyShowIn)) &&
           !isNamed(entry.notShowIn) && (!entry.tryExec || isProgram(*entry.tryExec)) && isProgram(entry.program);
}

std::optional<AutostartEntry> readEntry(const QString& path) {
    // A pipe in its place would keep its reader waiting.
    QFile file{path};
    if (!QFileInfo{path}.isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return parseAutostartEntry(file.read(largestAutostartEntryBytes + 1));
}

}  // namespace

AutostartPlaces AutostartPlaces::current() {
    const QString home = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QStringList dirs = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    dirs.removeAll(home);
    return {.configHome = home,
            .configDirs = dirs,
            .currentDesktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts),
            .executablePath = QCoreApplication::applicationFilePath()};
}

QString XdgLoginItems::ownPath() const {
    return entryPath(m_places.configHome);
}

bool XdgLoginItems::isEnabled() const {
    for (const QString& folder : QStringList{m_places.configHome} + m_places.configDirs) {
        if (!isThere(entryPath(folder)))
            continue;
        const auto entry = readEntry(entryPath(folder));
        return entry && startsOn(*entry, m_places.currentDesktop);
    }
    return false;
}

std::expected<void, Error> XdgLoginItems::registerItem() {
    if (m_places.executablePath.contains(u'='))
        return std::unexpected(TransportError{
            u"Programs whose path contains \"=\" can't be started at login: %1"_s.arg(m_places.executablePath)});
    return writeOwn(autostartEntryFor(m_places.executablePath));
}

std::expected<void, Error> XdgLoginItems::unregisterItem() {
    const bool isSystemWide =
        std::ranges::any_of(m_places.configDirs, [](const QString& folder) { return isThere(entryPath(folder)); });
    if (isSystemWide)
        return writeOwn(hidingAutostartEntry());
    QFile own{ownPath()};
    if (isThere(ownPath()) && !own.remove())
        return std::unexpected(TransportError{own.errorString()});
    return {};
}

std::expected<void, Error> XdgLoginItems::writeOwn(const QByteArray& entry) const {
    QDir{}.mkpath(QFileInfo{ownPath()}.path());
    QSaveFile file{ownPath()};
    if (!file.open(QIODevice::WriteOnly) || file.write(entry) != entry.size() || !file.commit())
        return std::unexpected(TransportError{file.errorString()});
    return {};
}

}  // namespace corvellan
