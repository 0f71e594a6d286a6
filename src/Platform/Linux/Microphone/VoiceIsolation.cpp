#include "VoiceIsolation.h"

#include <algorithm>
#include <array>

#include "Platform/Linux/PulseDefaultSource.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

/// Without blanks, hyphens and underscores, in lower case.
constexpr std::array filterWords{
    QStringView{u"echocancel"}, QStringView{u"rnnoise"}, QStringView{u"noisesuppress"}, QStringView{u"noisecancel"},
    QStringView{u"noisereduc"}, QStringView{u"denois"},  QStringView{u"noisetorch"},    QStringView{u"deepfilter"},
};

QString property(const PulseDefaultSource& source, const QString& key) {
    const auto found = source.properties.find(key);
    return found == source.properties.end() ? QString{} : found->second;
}

bool isFilter(const PulseDefaultSource& source) {
    return property(source, u"device.class"_s) == u"filter" || property(source, u"node.virtual"_s) == u"true" ||
           !property(source, u"node.link-group"_s).isEmpty();
}

bool tellsOfNoise(QString text) {
    text.removeIf([](QChar character) { return character == u' ' || character == u'-' || character == u'_'; });
    return std::ranges::any_of(filterWords,
                               [&text](QStringView word) { return text.contains(word, Qt::CaseInsensitive); });
}

}  // namespace

bool isolatesVoice(const PulseDefaultSource& source) {
    if (source.isMonitor)
        return false;
    if (source.driver.startsWith(u"module-echo-cancel"))
        return true;
    return isFilter(source) && (tellsOfNoise(source.name) || tellsOfNoise(property(source, u"device.description"_s)) ||
                                tellsOfNoise(property(source, u"node.link-group"_s)));
}

}  // namespace corvellan
