#pragma once

#include <chrono>
#include <expected>
#include <memory>
#include <optional>
#include <QString>
#include <QStringList>

#include "AccountBook.h"
#include "Admission.h"
#include "Base/Error.h"
#include "BuyerBook.h"
#include "CallBook.h"
#include "ChatServer.h"
#include "CoachServer.h"
#include "CustomerBook.h"
#include "EventLog.h"
#include "Faults.h"
#include "FrameBook.h"
#include "ProviderServer.h"
#include "SensorBook.h"
#include "StateFolder.h"
#include "TokenBook.h"
#include "WireProxy.h"

namespace corvellan::sandbox {

struct SandboxOptions {
    quint16 coachPort = 3001;
    quint16 chatPort = 3002;
    quint16 providerPort = 3003;
    UtteranceTextsMaker texts = lengthTexts();
    QString keepAudioFolder;
    /// Where sign-ins, calls and the extension's context outlive the sandbox; nowhere when empty.
    QString stateFolder;
    std::chrono::milliseconds closeAfter{500};
    /// What the feed of new versions announces; the version of this build unless given.
    std::optional<QString> feedVersion;
    AccountSettings accounts;
    /// Customers and meetings; those that come along unless given.
    std::optional<CustomerBook> customers;
    /// Whom training is held with; those that come along unless given.
    std::optional<BuyerBook> buyers;
    /// What the buyers' answers follow from; another one each session unless given.
    std::optional<std::uint32_t> buyerSeed;
    Faults faults;
    std::optional<WireFault> coachWire;
    std::optional<WireFault> chatWire;
    std::optional<WireFault> providerWire;
};

/// The stand-in for the remote parties, serving from its construction by `start` to its end. Lives on a
/// thread with an executor; the clock and the log must outlive it.
class Sandbox {
public:
    /// Fails when a port is taken, or the folder for the state cannot be had; nothing listens then.
    [[nodiscard]] static std::expected<std::unique_ptr<Sandbox>, Error> start(SandboxOptions options, Clock& clock,
                                                                              const EventLog& log);

    /// What clients connect to, proxies included.
    [[nodiscard]] quint16 coachPort() const { return m_coachPort; }
    [[nodiscard]] quint16 chatPort() const { return m_chatPort; }
    [[nodiscard]] quint16 providerPort() const { return m_providerPort; }

    /// "coach ws://127.0.0.1:3001/ws" and its like, one an address, for programs that start the sandbox.
    [[nodiscard]] QStringList addressLines() const;

    [[nodiscard]] AccountBook& accounts() { return m_accounts; }
    [[nodiscard]] const CallBook& calls() const { return m_calls; }
    [[nodiscard]] const ProviderServer& provider() const { return m_provider; }

private:
    Sandbox(SandboxOptions options, Clock& clock, const EventLog& log);
    [[nodiscard]] std::expected<void, Error> listen(const SandboxOptions& options);

    Clock& m_clock;
    const EventLog& m_log;
    TokenBook m_tokens;
    CallBook m_calls;
    AccountBook m_accounts;
    CustomerBook m_customers;
    BuyerBook m_buyers;
    Admission m_admission;
    SensorBook m_sensor;
    FrameBook m_frames;
    std::unique_ptr<StateFolder> m_state;
    ProviderServer m_provider;
    ChatServer m_chat;
    CoachServer m_coach;
    std::unique_ptr<WireProxy> m_coachProxy;
    std::unique_ptr<WireProxy> m_chatProxy;
    std::unique_ptr<WireProxy> m_providerProxy;
    quint16 m_coachPort = 0;
    quint16 m_chatPort = 0;
    quint16 m_providerPort = 0;
};

}  // namespace corvellan::sandbox
