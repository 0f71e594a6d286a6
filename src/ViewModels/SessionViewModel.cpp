#include "SessionViewModel.h"
namespace corvellan {
SessionViewModel::SessionViewModel(SessionEnvironment environment, std::unique_ptr<WebSocketServiceProtocol> webSocket,
                                   std::unique_ptr<AudioServiceProtocol> audio, std::unique_ptr<SttServiceProtocol> stt,
                                   std::unique_ptr<AuthServiceProtocol> auth)
    : m_environment(std::move(environment)),
      m_webSocket(std::move(webSocket)),
      m_audio(std::move(audio)),
      m_stt(std::move(stt)),
      m_auth(std::move(auth)) {}
SessionViewModel::~SessionViewModel() = default;
}  // namespace corvellan
