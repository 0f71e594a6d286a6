#pragma once

#include "Platform/MicrophoneModes.h"

namespace corvellan {

class SystemSettings;

/// The microphone's mode by the default source: `voiceIsolation` when a noise or echo filter provides it (see
/// `isolatesVoice`), otherwise `standard`, also where no sound server answers. There is no wide spectrum, and
/// no choice of modes either: the picker is the desktop's sound settings, where another source can be chosen.
class PulseMicrophoneModes final : public MicrophoneModes {
public:
    /// It must outlive this.
    explicit PulseMicrophoneModes(SystemSettings& settings) : m_settings(settings) {}

    [[nodiscard]] ActiveMicrophoneMode activeMode() override;
    void showPicker() override;

private:
    SystemSettings& m_settings;
};

}  // namespace corvellan
