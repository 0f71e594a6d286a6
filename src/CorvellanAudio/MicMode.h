#pragma once

#include <array>
#include <expected>
#include <optional>
#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <string_view>

#include "Base/Error.h"

namespace corvellan {

class MicrophoneModes;

/// What the system does to the user's voice before programs get it.
enum class MicMode { voiceIsolation, standard, wideSpectrum, unsupported };

struct MicModeRow {
    MicMode value;
    std::string_view raw;
};

/// A mode's raw value is also its JSON form.
inline constexpr std::array micModeRows{
    MicModeRow{MicMode::voiceIsolation, "voiceIsolation"},
    MicModeRow{MicMode::standard, "standard"},
    MicModeRow{MicMode::wideSpectrum, "wideSpectrum"},
    MicModeRow{MicMode::unsupported, "unsupported"},
};

[[nodiscard]] QString rawValue(MicMode mode);
[[nodiscard]] std::optional<MicMode> micMode(QStringView rawValue);

/// The mode in force. Never `unsupported`: what the platform gives beyond its known values is `standard`. May
/// wait for the system, see `MicrophoneModes`.
[[nodiscard]] MicMode currentMicMode(MicrophoneModes& modes);

[[nodiscard]] constexpr bool isVoiceIsolated(MicMode mode) {
    return mode == MicMode::voiceIsolation;
}

/// Opens the system's choice of modes.
void showSystemPicker(MicrophoneModes& modes);

struct MicModeResult {
    QString mode;
    bool voiceIsolated = false;

    MicModeResult() = default;
    MicModeResult(QString modeText, bool isIsolated) : mode(std::move(modeText)), voiceIsolated(isIsolated) {}
    explicit MicModeResult(MicMode from) : mode(rawValue(from)), voiceIsolated(isVoiceIsolated(from)) {}

    bool operator==(const MicModeResult&) const = default;
};

/// Why JSON is no `MicModeResult`.
struct MicModeDecodingError {
    QString detail;

    [[nodiscard]] QString errorDescription() const { return detail; }
};

/// A larger text is refused unread.
inline constexpr qsizetype largestMicModeBytes = 64 * 1024;

/// An object with the keys "mode" and "voice_isolated".
[[nodiscard]] QByteArray encode(const MicModeResult& result);
/// Strict about both fields; other keys are ignored. Any bytes give a value or a `MicModeDecodingError`.
[[nodiscard]] std::expected<MicModeResult, Error> decodeMicModeResult(QByteArrayView json);

}  // namespace corvellan
