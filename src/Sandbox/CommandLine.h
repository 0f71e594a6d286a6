#pragma once

#include <expected>
#include <QString>
#include <QStringList>
#include <variant>

#include "Sandbox.h"
#include "SensorBook.h"

namespace corvellan::sandbox {

/// Serve until a signal comes.
struct ServeCommand {
    SandboxOptions options;
    QString texts;  ///< Where texts come from, for the start's lines.
};
/// Print a script.
struct ScriptCommand {
    enum class Form { list, json };
    QString file;
    QString lengthsFile;
    Form form = Form::list;
};
/// Print how many seconds of speech each WAV file holds.
struct MeasureCommand {
    QStringList files;
};
/// Play the browser extension against a running sandbox.
struct ExtensionCommand {
    SensorReport report;
    quint16 coachPort = 3001;
};
struct HelpCommand {
    QString text;
};

using Command = std::variant<ServeCommand, ScriptCommand, MeasureCommand, ExtensionCommand, HelpCommand>;

/// \param arguments without the program's name. Reads scripts and their lengths. The error is a sentence
///     for the user.
[[nodiscard]] std::expected<Command, QString> parseCommandLine(const QStringList& arguments);

/// The text to print, or the error.
[[nodiscard]] std::expected<QString, QString> run(const ScriptCommand& command);
[[nodiscard]] std::expected<QString, QString> run(const MeasureCommand& command);
/// Waits for the sandbox's answer, in an event loop.
[[nodiscard]] std::expected<QString, QString> run(const ExtensionCommand& command);

}  // namespace corvellan::sandbox
