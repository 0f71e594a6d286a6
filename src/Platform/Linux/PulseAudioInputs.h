#pragma once

#include "Base/Clock.h"
#include "Platform/AudioInput.h"
#include "Platform/OwnSpeech.h"

namespace corvellan {

/// The computer's sound through PulseAudio, or PipeWire's server of its language. Each input runs a
/// thread of its own, which is the audio thread of the seam.
class PulseAudioInputs final : public AudioInputs {
public:
    /// Both must outlive all inputs.
    PulseAudioInputs(Clock& clock, const OwnSpeech& ownSpeech) : m_clock(clock), m_ownSpeech(ownSpeech) {}

    QCoro::Task<Opened> open(AudioInputKind kind, std::stop_token stop) override;

private:
    Clock& m_clock;
    const OwnSpeech& m_ownSpeech;
};

}  // namespace corvellan
