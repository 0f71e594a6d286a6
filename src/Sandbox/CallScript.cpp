#include "CallScript.h"

#include <algorithm>
#include <cmath>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStringDecoder>

#include "Base/Text.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr double longestLineSeconds = 60;
constexpr double longestCallSeconds = 4 * 3600;
constexpr qsizetype mostLines = 10'000;
constexpr int slowest = 80;
constexpr int fastest = 450;

using Parsed = std::expected<void, QString>;

/// "1:05.5" or "65.5", in seconds.
std::optional<double> seconds(const QString& text) {
    static const QRegularExpression pattern{u"\\A(?:(\\d{1,3}):(?=\\d\\d(?:\\.|\\z)))?(\\d{1,5}(?:\\.\\d{1,3})?)\\z"_s};
    const auto match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const double whole = match.capturedView(2).toDouble();
    if (!match.hasCaptured(1) || match.capturedView(1).isEmpty())
        return whole;
    if (whole >= 60)
        return std::nullopt;
    return match.capturedView(1).toInt() * 60 + whole;
}

std::optional<AudioSourceTag> side(const QString& word) {
    return audioSourceTag(word.toStdString());
}

Parsed takeVoice(CallScript& script, const QStringList& columns) {
    const auto who = columns.size() == 4 ? side(columns[1]) : std::nullopt;
    if (!who)
        return std::unexpected(u"a voice is \"voice | mic or system | name | words per minute\""_s);
    static const QRegularExpression name{u"\\A[A-Za-z0-9_+-]{1,40}\\z"_s};
    if (!name.match(columns[2]).hasMatch())
        return std::unexpected(u"\"%1\" cannot be the name of a voice"_s.arg(columns[2]));
    bool isNumber = false;
    const int speed = columns[3].toInt(&isNumber);
    if (!isNumber || speed < slowest || speed > fastest)
        return std::unexpected(
            u"\"%1\" is no speed: %2 to %3 words per minute"_s.arg(columns[3]).arg(slowest).arg(fastest));
    (*who == AudioSourceTag::mic ? script.mic : script.system) = {.name = columns[2], .wordsPerMinute = speed};
    return {};
}

Parsed takeLine(CallScript& script, const QStringList& columns) {
    if (columns.size() < 3)
        return std::unexpected(u"a line is \"mic or system | start | what is said\""_s);
    ScriptLine line{.number = static_cast<int>(script.lines.size()) + 1,
                    .side = *side(columns[0]),
                    // What is said may hold the separator.
                    .text = columns.mid(2).join(u" | "_s)};
    if (line.text.isEmpty())
        return std::unexpected(u"nothing is said"_s);

    const QStringList times = columns[1].split(u'~');
    const auto start = seconds(times[0].trimmed());
    if (!start || times.size() > 2)
        return std::unexpected(u"\"%1\" is no start such as 0:02.5 or 0:02.5 ~ 3.4"_s.arg(columns[1]));
    if (*start > longestCallSeconds)
        return std::unexpected(u"a call is at most four hours long"_s);
    line.startSeconds = *start;
    if (times.size() == 2) {
        const auto length = seconds(times[1].trimmed());
        if (!length || *length <= 0 || *length > longestLineSeconds)
            return std::unexpected(u"\"%1\" is no length of up to 60 seconds"_s.arg(times[1].trimmed()));
        line.seconds = *length;
    }
    if (!script.lines.empty() && line.startSeconds < script.lines.back().startSeconds)
        return std::unexpected(u"it starts before the line above it"_s);
    if (static_cast<qsizetype>(script.lines.size()) >= mostLines)
        return std::unexpected(u"more than %1 lines"_s.arg(mostLines));
    script.lines.push_back(line);
    return {};
}

Parsed takeRow(CallScript& script, const QString& row) {
    QStringList columns = row.split(u'|');
    for (auto& column : columns)
        column = text::trimmed(column);
    if (columns[0] == u"title"_s) {
        if (columns.size() != 2 || columns[1].isEmpty())
            return std::unexpected(u"a title is \"title | text\""_s);
        script.title = columns[1];
        return {};
    }
    if (columns[0] == u"voice"_s)
        return takeVoice(script, columns);
    if (side(columns[0]))
        return takeLine(script, columns);
    return std::unexpected(
        u"\"%1\" begins no line: mic, system, voice and title do"_s.arg(text::prefix(columns[0], 40)));
}

}  // namespace

QString ScriptError::errorDescription() const {
    return line > 0 ? u"line %1: %2"_s.arg(line).arg(message) : message;
}

std::expected<CallScript, Error> CallScript::parse(const QByteArray& bytes) {
    QStringDecoder decoder{QStringDecoder::Utf8};
    const QString whole = decoder(bytes);
    if (decoder.hasError())
        return std::unexpected(Error{ScriptError{.message = u"not UTF-8 text"_s}});
    CallScript script;
    int number = 0;
    for (const auto& raw : whole.split(u'\n')) {
        ++number;
        const QString row = text::trimmed(raw);
        if (row.isEmpty() || row.startsWith(u'#'))
            continue;
        if (const auto taken = takeRow(script, row); !taken)
            return std::unexpected(Error{ScriptError{.line = number, .message = taken.error()}});
    }
    if (script.lines.empty())
        return std::unexpected(Error{ScriptError{.message = u"the script holds no line"_s}});
    // Voices may stand anywhere, so lengths are estimated last.
    for (auto& line : script.lines)
        if (line.seconds == 0)
            line.seconds = estimatedSeconds(line.text, script.voice(line.side).wordsPerMinute);
    return script;
}

std::expected<CallScript, Error> CallScript::load(const QString& fileOrName) {
    QFile file{fileOrName};
    if (!file.exists() && !fileOrName.contains(u'/'))
        file.setFileName(u":/sandbox/"_s + fileOrName + u".script"_s);
    if (!file.open(QIODevice::ReadOnly))
        return std::unexpected(
            Error{ScriptError{.message = u"cannot read %1: %2"_s.arg(fileOrName, file.errorString())}});
    return parse(file.readAll());
}

std::expected<void, Error> CallScript::useLengths(const QByteArray& json) {
    const auto document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::unexpected(Error{ScriptError{.message = u"lengths are a JSON array of seconds"_s}});
    const auto array = document.array();
    if (array.size() != static_cast<qsizetype>(this->lines.size()))
        return std::unexpected(
            Error{ScriptError{.message = u"%1 lengths for %2 lines"_s.arg(array.size()).arg(this->lines.size())}});
    for (qsizetype i = 0; i < array.size(); ++i) {
        const auto& length = array.at(i);
        if (length.isNull())
            continue;
        if (!length.isDouble() || length.toDouble() <= 0 || length.toDouble() > longestLineSeconds)
            return std::unexpected(
                Error{ScriptError{.message = u"length %1 is no time of up to 60 seconds"_s.arg(i + 1)}});
        this->lines[static_cast<std::size_t>(i)].seconds = length.toDouble();
    }
    return {};
}

double CallScript::durationSeconds() const {
    double end = 0;
    for (const auto& line : lines)
        end = std::max(end, line.startSeconds + line.seconds);
    return end;
}

const ScriptVoice& CallScript::voice(AudioSourceTag side) const {
    return side == AudioSourceTag::mic ? mic : system;
}

std::vector<ScriptLine> CallScript::linesOf(AudioSourceTag side) const {
    std::vector<ScriptLine> found;
    for (const auto& line : lines)
        if (line.side == side)
            found.push_back(line);
    return found;
}

QByteArray CallScript::json() const {
    const auto voiceObject = [](const ScriptVoice& voice) {
        return QJsonObject{{u"voice"_s, voice.name}, {u"words_per_minute"_s, voice.wordsPerMinute}};
    };
    QJsonArray lineArray;
    for (const auto& line : lines)
        lineArray.append(QJsonObject{{u"number"_s, line.number},
                                     {u"side"_s, tableText(rawValue(line.side))},
                                     {u"start"_s, line.startSeconds},
                                     {u"seconds"_s, line.seconds},
                                     {u"text"_s, line.text}});
    const QJsonObject object{
        {u"title"_s, title},
        {u"duration"_s, durationSeconds()},
        {u"voices"_s, QJsonObject{{u"mic"_s, voiceObject(mic)}, {u"system"_s, voiceObject(system)}}},
        {u"lines"_s, lineArray}};
    return QJsonDocument{object}.toJson(QJsonDocument::Indented);
}

QString CallScript::list() const {
    QString listing = title.isEmpty() ? QString{} : title + u'\n';
    for (const auto& line : lines) {
        const int minutes = static_cast<int>(line.startSeconds) / 60;
        const QString second = text::fixed(line.startSeconds - minutes * 60, 1).rightJustified(4, u'0');
        listing += u"%1  %2:%3  %4 s  %5\n"_s.arg(tableText(rawValue(line.side)), -6)
                       .arg(minutes)
                       .arg(second, text::fixed(line.seconds, 1).rightJustified(4), line.text);
    }
    return listing;
}

double estimatedSeconds(const QString& text, int wordsPerMinute) {
    // Measured with espeak-ng: what a letter takes, and the rest behind a comma or a sentence.
    constexpr double letterMinutes = 0.058 * 165;
    constexpr double restMinutes = 0.45 * 165;
    constexpr double shortestSeconds = 0.2;
    double work = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isLetterOrNumber())
            work += letterMinutes;
        else if (text[i].isPunct() && i + 1 < text.size() && text[i + 1].isSpace())
            work += restMinutes;
    }
    return std::clamp(work / wordsPerMinute, shortestSeconds, longestLineSeconds);
}

bool fits(double spokenSeconds, double lineSeconds) {
    return std::abs(spokenSeconds - lineSeconds) <= lineSeconds / 4;
}

}  // namespace corvellan::sandbox
