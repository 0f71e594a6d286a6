#pragma once

#include <optional>
#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>

namespace corvellan {

/// A desktop entry in an autostart folder, as far as it decides whether a program is started.
struct AutostartEntry {
    /// The user has deleted it: it hides those of the same name in less important folders.
    bool isHidden = false;
    /// The switch that settings programs write. On where it is not written.
    bool isSwitchedOn = true;
    /// Desktops that alone start it, if there are any, and desktops that don't.
    QStringList onlyShowIn;
    QStringList notShowIn;
    /// A program that must be there, if it is written.
    std::optional<QString> tryExec;
    /// What `Exec` starts, without its arguments: a name or a path. Empty where that can't be read.
    QString program;
};

/// A larger file is none of ours, and nobody's.
inline constexpr qsizetype largestAutostartEntryBytes = 64 * 1024;

/// Reads any bytes. Empty when they are no desktop entry.
[[nodiscard]] std::optional<AutostartEntry> parseAutostartEntry(QByteArrayView bytes);

/// The entry that starts `executablePath`, an absolute path without "=", which no entry can name.
[[nodiscard]] QByteArray autostartEntryFor(const QString& executablePath);

/// The entry that hides one of a less important folder.
[[nodiscard]] QByteArray hidingAutostartEntry();

}  // namespace corvellan
