#include "AutostartEntry.h"

#include <map>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

using Keys = std::map<QString, QString>;

/// Without the blanks round it, and a carriage return of other systems. Other white space belongs to the value.
QStringView stripped(QStringView text) {
    const auto isBlank = [](QChar character) { return character == u' ' || character == u'\t' || character == u'\r'; };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

/// The keys of the group [Desktop Entry], their values still escaped. Of a key that comes twice the last counts.
std::optional<Keys> keysOf(const QString& text) {
    std::optional<Keys> keys;
    bool isInGroup = false;
    for (const QStringView whole : QStringView{text}.split(u'\n')) {
        const auto line = stripped(whole);
        if (line.startsWith(u'[')) {
            isInGroup = line == u"[Desktop Entry]";
            if (isInGroup && !keys)
                keys.emplace();
            continue;
        }
        const auto split = line.indexOf(u'=');
        if (!isInGroup || line.startsWith(u'#') || split <= 0)
            continue;
        keys->insert_or_assign(stripped(line.first(split)).toString(), stripped(line.sliced(split + 1)).toString());
    }
    return keys;
}

/// Takes away the escapes of all string values.
QString unescaped(QStringView value) {
    QString text;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != u'\\' || i + 1 == value.size()) {
            text.append(value[i]);
            continue;
        }
        const QChar escape = value[++i];
        switch (escape.unicode()) {
        case u's': text.append(u' '); break;
        case u'n': text.append(u'\n'); break;
        case u't': text.append(u'\t'); break;
        case u'r': text.append(u'\r'); break;
        case u'\\': text.append(u'\\'); break;
        // Written by hand without the second backslash that is due.
        default: text.append(u'\\').append(escape);
        }
    }
    return text;
}

QString escaped(const QString& text) {
    QString value;
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'\n': value.append(u"\\n"_s); break;
        case u'\t': value.append(u"\\t"_s); break;
        case u'\r': value.append(u"\\r"_s); break;
        case u'\\': value.append(u"\\\\"_s); break;
        // Blanks at the edges would not be read.
        case u' ': value.append(value.isEmpty() ? u"\\s"_s : u" "_s); break;
        default: value.append(character);
        }
    }
    if (value.endsWith(u' '))
        value.replace(value.size() - 1, 1, u"\\s"_s);
    return value;
}

/// The first word of a command line, by the quoting rules of `Exec`. Empty when its quote is never closed.
QString firstWord(QStringView command) {
    command = stripped(command);
    if (!command.startsWith(u'"')) {
        qsizetype end = 0;
        while (end < command.size() && !command[end].isSpace())
            ++end;
        return command.first(end).toString();
    }
    QString word;
    for (qsizetype i = 1; i < command.size(); ++i) {
        if (command[i] == u'"')
            return word;
        if (command[i] == u'\\' && i + 1 < command.size())
            ++i;
        word.append(command[i]);
    }
    return {};
}

QString quoted(const QString& argument) {
    QString word{u'"'};
    for (const QChar character : argument) {
        if (u"\"`$\\"_s.contains(character))
            word.append(u'\\');
        word.append(character);
        // A single one would begin a field code.
        if (character == u'%')
            word.append(u'%');
    }
    return word + u'"';
}

}  // namespace

std::optional<AutostartEntry> parseAutostartEntry(QByteArrayView bytes) {
    if (bytes.size() > largestAutostartEntryBytes)
        return std::nullopt;
    QStringDecoder decode{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    const QString text = decode(bytes);
    const auto keys = decode.hasError() ? std::nullopt : keysOf(text);
    if (!keys)
        return std::nullopt;

    const auto value = [&keys](const QString& key) -> std::optional<QString> {
        const auto found = keys->find(key);
        return found == keys->end() ? std::nullopt : std::optional{unescaped(found->second)};
    };
    const auto isTrue = [&value](const QString& key, bool usual) {
        const auto word = value(key);
        return word == u"true" || word == u"1" || (usual && word != u"false" && word != u"0");
    };
    const auto list = [&value](const QString& key) {
        return value(key).value_or(QString{}).split(u';', Qt::SkipEmptyParts);
    };
    AutostartEntry entry{.isHidden = isTrue(u"Hidden"_s, false),
                         .isSwitchedOn = isTrue(u"X-GNOME-Autostart-enabled"_s, true),
                         .onlyShowIn = list(u"OnlyShowIn"_s),
                         .notShowIn = list(u"NotShowIn"_s),
                         .tryExec = value(u"TryExec"_s),
                         .program = firstWord(value(u"Exec"_s).value_or(QString{}))};
    entry.program.replace(u"%%"_s, u"%"_s);
    return entry;
}

QByteArray autostartEntryFor(const QString& executablePath) {
    const QString text =
        u"[Desktop Entry]\n"
        "Type=Application\n"
        "Name=Corvellan Bram\n"
        "Comment=Coaching during live calls\n"
        "Icon=com.teskara.CorvellanBram\n"
        "Exec="_s +
        escaped(quoted(executablePath)) + u"\nTryExec="_s + escaped(executablePath) +
        u"\nTerminal=false\nX-GNOME-Autostart-enabled=true\n"_s;
    return text.toUtf8();
}

QByteArray hidingAutostartEntry() {
    return "[Desktop Entry]\nType=Application\nName=Corvellan Bram\nHidden=true\n";
}

}  // namespace corvellan
