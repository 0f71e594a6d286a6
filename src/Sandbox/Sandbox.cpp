#include "Sandbox.h"

#include "CoachRoutes.h"
#include "FrameRoutes.h"
#include "Listening.h"
#include "SensorRoutes.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

/// Opens `server` on the port that clients know, or behind a proxy that has that port.
template <typename Server>
std::expected<quint16, Error> open(Server& server, std::unique_ptr<WireProxy>& proxy, std::optional<WireFault> wire,
                                   quint16 port, Clock& clock, const EventLog& log) {
    const auto addresses = loopbackAddresses();
    const auto own = server.listen(addresses, wire ? 0 : port);
    if (!own || !wire)
        return own;
    proxy = std::make_unique<WireProxy>(*wire, *own, clock, log);
    return proxy->listen(addresses, port);
}

}  // namespace

Sandbox::Sandbox(SandboxOptions options, Clock& clock, const EventLog& log)
    : m_clock(clock),
      m_log(log),
      m_accounts(std::move(options.accounts), clock),
      m_customers(options.customers ? std::move(*options.customers) : CustomerBook::shipped()),
      m_buyers(options.buyers ? std::move(*options.buyers) : BuyerBook::shipped()),
      m_admission(m_accounts, log),
      m_provider(
          {.texts = std::move(options.texts), .keepAudioFolder = options.keepAudioFolder, .faults = options.faults},
          m_tokens, log),
      m_chat(m_accounts, m_customers, options.faults, clock, log),
      m_coach({.settings = {.faults = options.faults,
                            .closeAfter = options.closeAfter,
                            .providerPort = 0,
                            .buyerSeed = options.buyerSeed},
               .tokens = m_tokens,
               .calls = m_calls,
               .buyers = m_buyers,
               .admission = m_admission,
               .log = log,
               .clock = clock}) {
    auto& http = m_coach.http();
    addCoachRoutes(http, {.calls = m_calls,
                          .provider = m_provider,
                          .buyers = m_buyers,
                          .admission = m_admission,
                          .log = log,
                          .feedVersion = options.feedVersion.value_or(QStringLiteral(SANDBOX_VERSION))});
    const auto tell = [this](const ServerMsg& message) { return m_coach.tellListeners(message); };
    addSensorRoutes(http, m_sensor, m_customers, tell, m_admission, clock, log);
    addFrameRoutes(http, m_frames, m_calls, m_admission, clock, log);
}

std::expected<std::unique_ptr<Sandbox>, Error> Sandbox::start(SandboxOptions options, Clock& clock,
                                                              const EventLog& log) {
    std::unique_ptr<Sandbox> sandbox{new Sandbox{options, clock, log}};
    if (!options.stateFolder.isEmpty()) {
        auto state = StateFolder::open(options.stateFolder, log);
        if (!state)
            return std::unexpected(state.error());
        sandbox->m_state = std::move(*state);
        sandbox->m_state->attach(sandbox->m_accounts, sandbox->m_calls, sandbox->m_sensor);
    }
    if (const auto listening = sandbox->listen(options); !listening)
        return std::unexpected(listening.error());
    return sandbox;
}

std::expected<void, Error> Sandbox::listen(const SandboxOptions& options) {
    const auto provider = open(m_provider, m_providerProxy, options.providerWire, options.providerPort, m_clock, m_log);
    if (!provider)
        return std::unexpected(provider.error());
    const auto chat = open(m_chat, m_chatProxy, options.chatWire, options.chatPort, m_clock, m_log);
    if (!chat)
        return std::unexpected(chat.error());
    const auto coach = open(m_coach, m_coachProxy, options.coachWire, options.coachPort, m_clock, m_log);
    if (!coach)
        return std::unexpected(coach.error());
    m_providerPort = *provider;
    m_chatPort = *chat;
    m_coachPort = *coach;
    m_coach.setProviderPort(m_providerPort);
    return {};
}

QStringList Sandbox::addressLines() const {
    QStringList lines;
    for (const auto& address : loopbackAddresses()) {
        lines.append(u"coach ws://%1:%2/ws"_s.arg(address.toString()).arg(m_coachPort));
        lines.append(u"rest http://%1:%2"_s.arg(address.toString()).arg(m_coachPort));
        lines.append(u"chat http://%1:%2"_s.arg(address.toString()).arg(m_chatPort));
        lines.append(u"stt ws://%1:%2/v1/realtime"_s.arg(address.toString()).arg(m_providerPort));
    }
    return lines;
}

}  // namespace corvellan::sandbox
