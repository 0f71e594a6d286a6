#include "SessionViewModel.h"

using namespace Qt::StringLiterals;

namespace corvellan {

void SessionViewModel::onTtsPlayingChanged(bool isPlaying) {
    runDetached([this, isPlaying](std::stop_token) -> QCoro::Task<void> {
        setIsTtsPlaying(isPlaying);
        // While the voice speaks the pump throws chunks away, so that the reply is never heard as the user.
        co_await m_audio->setMuted(isPlaying);
        if (isPlaying) {
            co_await m_audio->clearAudioLevel();
            setTrainStage(TrainStage::counterpartSpeaking);
            setAudioLevel(0);
        } else {
            resumeListening();
        }
    });
}

void SessionViewModel::stopTtsAndResumeMic() {
    m_tts->stop();
    setIsTtsPlaying(false);
    runDetached([this](std::stop_token) { return m_audio->setMuted(false); });
    resumeListening();
}

void SessionViewModel::resumeListening() {
    if (!m_isTrainMode || !m_isSessionActive)
        return;
    setTrainStage(TrainStage::listening);
    setStatusText(u"Listening..."_s);
}

void SessionViewModel::toggleTtsMute() {
    setIsTtsMuted(!m_isTtsMuted);
    if (m_isTtsMuted)
        stopTtsAndResumeMic();
}

void SessionViewModel::interruptTts() {
    stopTtsAndResumeMic();
}

}  // namespace corvellan
