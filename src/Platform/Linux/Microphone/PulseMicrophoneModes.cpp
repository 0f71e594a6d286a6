#include "PulseMicrophoneModes.h"

#include "Platform/Linux/PulseDefaultSource.h"
#include "Platform/Permissions.h"
#include "VoiceIsolation.h"

namespace corvellan {

ActiveMicrophoneMode PulseMicrophoneModes::activeMode() {
    const auto source = readDefaultSource();
    return source && isolatesVoice(*source) ? ActiveMicrophoneMode::voiceIsolation : ActiveMicrophoneMode::standard;
}

void PulseMicrophoneModes::showPicker() {
    m_settings.openPrivacyPane(PrivacyPane::microphone);
}

}  // namespace corvellan
