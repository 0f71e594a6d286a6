#include "MicMode.h"

#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include "Platform/MicrophoneModes.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

namespace json = boost::json;

/// Other keys nest as deep as they like; beyond this the text is refused, since the parser recurses.
constexpr std::size_t deepestNesting = 1000;

template <typename Value>
Value viewOf(QByteArrayView bytes) {
    return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

std::unexpected<Error> failure(const QString& detail) {
    return std::unexpected<Error>(MicModeDecodingError{detail});
}

}  // namespace

QString rawValue(MicMode mode) {
    for (const auto& row : micModeRows)
        if (row.value == mode)
            return QString::fromLatin1(row.raw.data(), static_cast<qsizetype>(row.raw.size()));
    Q_UNREACHABLE();
}

std::optional<MicMode> micMode(QStringView rawValue) {
    for (const auto& row : micModeRows)
        if (rawValue == QLatin1StringView{row.raw.data(), static_cast<qsizetype>(row.raw.size())})
            return row.value;
    return std::nullopt;
}

MicMode currentMicMode(MicrophoneModes& modes) {
    switch (modes.activeMode()) {
    case ActiveMicrophoneMode::standard: return MicMode::standard;
    case ActiveMicrophoneMode::wideSpectrum: return MicMode::wideSpectrum;
    case ActiveMicrophoneMode::voiceIsolation: return MicMode::voiceIsolation;
    }
    return MicMode::standard;
}

void showSystemPicker(MicrophoneModes& modes) {
    modes.showPicker();
}

QByteArray encode(const MicModeResult& result) {
    json::object object;
    object.emplace("mode", viewOf<json::string_view>(result.mode.toUtf8()));
    object.emplace("voice_isolated", result.voiceIsolated);
    return QByteArray::fromStdString(json::serialize(object));
}

std::expected<MicModeResult, Error> decodeMicModeResult(QByteArrayView bytes) {
    if (bytes.size() > largestMicModeBytes)
        return failure(u"The text is too long"_s);
    json::error_code error;
    json::parse_options options;
    options.max_depth = deepestNesting;
    const auto value = json::parse(viewOf<json::string_view>(bytes), error, {}, options);
    if (error)
        return failure(QString::fromStdString(error.message()));
    const auto* const object = value.if_object();
    if (!object)
        return failure(u"An object was expected"_s);
    const auto* const mode = object->if_contains("mode");
    const auto* const isolated = object->if_contains("voice_isolated");
    if (!mode || !mode->is_string())
        return failure(u"mode: a string was expected"_s);
    if (!isolated || !isolated->is_bool())
        return failure(u"voice_isolated: true or false was expected"_s);
    const auto& text = mode->get_string();
    return MicModeResult{QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), isolated->get_bool()};
}

}  // namespace corvellan
