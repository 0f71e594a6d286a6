#include "EspeakVoices.h"

#include <array>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

/// "Pty Language Age/Gender VoiceName File", then other languages.
enum Column { priority, language, gender, name, file, columnCount };

constexpr auto mbrolaFolder = "mb/mb-"_L1;

}  // namespace

QString languageTag(const QString& language) {
    QStringList parts = language.split(u'-');
    for (qsizetype i = 1; i < parts.size(); ++i)
        if (parts.at(i).size() == 2 && parts.at(i - 1) != u"x")
            parts[i] = parts.at(i).toUpper();
    return parts.join(u'-');
}

std::vector<EspeakVoice> parseEspeakVoices(const QByteArray& listing,
                                           const std::function<bool(const QString&)>& isInstalled) {
    std::vector<EspeakVoice> voices;
    for (const QString& line : QString::fromUtf8(listing).split(u'\n')) {
        const QStringList columns = line.simplified().split(u' ');
        bool isVoice = false;
        if (columns.size() >= columnCount)
            columns.at(priority).toInt(&isVoice);
        // What stands under "variant" changes another voice and is none.
        if (!isVoice || columns.at(Column::language) == u"variant")
            continue;
        EspeakVoice voice{.voice = {.language = languageTag(columns.at(Column::language)),
                                    .quality = VoiceQuality::standard,
                                    .name = QString{columns.at(Column::name)}.replace(u'_', u' ')},
                          .identifier = columns.at(Column::file)};
        // It becomes an argument of a program.
        if (voice.identifier.startsWith(u'-'))
            continue;
        if (voice.identifier.startsWith(mbrolaFolder)) {
            const QString speaker = voice.identifier.sliced(mbrolaFolder.size());
            const QString database = speaker.section(u'-', 0, 0);
            if (!isInstalled(database))
                continue;
            if (database == speaker)
                voice.voice.quality = VoiceQuality::enhanced;
        }
        voices.push_back(std::move(voice));
    }
    return voices;
}

bool isMbrolaInstalled(const QString& database) {
    if (QStandardPaths::findExecutable(u"mbrola"_s).isEmpty())
        return false;
    // Where espeak-ng itself looks.
    for (const QString& path :
         {u"/usr/share/mbrola/%1/%1"_s, u"/usr/share/mbrola/%1"_s, u"/usr/share/mbrola/voices/%1"_s})
        if (const QFileInfo file{path.arg(database)}; file.isFile())
            return true;
    return false;
}

}  // namespace corvellan
