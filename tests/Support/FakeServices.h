#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Base/Tasks.h"
#include "CallLog.h"
#include "Services/Protocols/AudioServiceProtocol.h"
#include "Services/Protocols/AuthServiceProtocol.h"
#include "Services/Protocols/BriefingServiceProtocol.h"
#include "Services/Protocols/HttpClientProtocol.h"
#include "Services/Protocols/ScreenShareServiceProtocol.h"
#include "Services/Protocols/ServiceFactory.h"
#include "Services/Protocols/SessionStoreProtocol.h"
#include "Services/Protocols/SttServiceProtocol.h"
#include "Services/Protocols/TtsServiceProtocol.h"
#include "Services/Protocols/UpdaterProtocol.h"
#include "Services/Protocols/WebSocketServiceProtocol.h"

/// Stand-ins for the services at the line that `Services/Protocols` draws. They live on the main
/// thread, do at once what they are asked, keep a record of it, and can be told to fail.
namespace corvellan::test {

class FakeWebSocket final : public WebSocketServiceProtocol {
public:
    explicit FakeWebSocket(CallLog& log, std::string name = "ws") : m_log(log), m_name(std::move(name)) {}

    QCoro::Task<std::expected<void, Error>> connect(QUrl url) override;
    QCoro::Task<std::expected<void, Error>> send(ClientMsg message) override;
    AsyncStream<ReceivedServerMsg> receive() override;
    QCoro::Task<void> disconnect() override;

    void deliver(ServerMsg message) { m_producer->push({.message = std::move(message), .arrivedAt = {}}); }
    void deliver(ServerMsg::Value value) { deliver(ServerMsg{std::move(value)}); }
    void close() { m_producer->finish(); }
    void fail(const QString& message) { m_producer->fail(TransportError{message}); }

    template <typename Payload>
    [[nodiscard]] int countSent() const {
        int count = 0;
        for (const auto& message : sent)
            count += std::holds_alternative<Payload>(message.value) ? 1 : 0;
        return count;
    }

    std::vector<QUrl> urls;
    std::vector<ClientMsg> sent;
    std::optional<Error> connectError;
    std::optional<Error> sendError;
    Gate connectGate;

private:
    CallLog& m_log;
    std::string m_name;
    std::optional<AsyncStream<ReceivedServerMsg>> m_stream;
    std::optional<AsyncStream<ReceivedServerMsg>::Producer> m_producer;
};

class FakeAudio final : public AudioServiceProtocol {
public:
    explicit FakeAudio(CallLog& log) : m_log(log) {}

    QCoro::Task<float> audioLevel() override;
    QCoro::Task<bool> isMuted() override;
    QCoro::Task<void> setMuted(bool value) override;
    QCoro::Task<void> clearAudioLevel() override;
    QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> startMic() override;
    QCoro::Task<void> stopMic() override;

    void deliver(QByteArray pcm = QByteArray(4, '\1')) { m_producer->push({.pcm = std::move(pcm)}); }
    [[nodiscard]] bool isRunning() const { return m_producer.has_value(); }

    float level = 0.5F;
    bool muted = false;
    std::optional<Error> startError;

private:
    CallLog& m_log;
    std::optional<AsyncStream<AudioChunk>::Producer> m_producer;
};

class FakeSystemAudio final : public SystemAudioServiceProtocol {
public:
    explicit FakeSystemAudio(CallLog& log) : m_log(log) {}

    QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> start() override;
    QCoro::Task<void> stop() override;
    QCoro::Task<float> audioLevel() override;

    void deliver(QByteArray pcm = QByteArray(4, '\2')) { m_producer->push({.pcm = std::move(pcm)}); }
    void endStream() { m_producer->finish(); }

    float level = 0.25F;
    std::optional<Error> startError;

private:
    CallLog& m_log;
    std::optional<AsyncStream<AudioChunk>::Producer> m_producer;
};

class FakeStt final : public SttServiceProtocol {
public:
    FakeStt(CallLog& log, std::string name) : m_log(log), m_name(std::move(name)) {}

    QCoro::Task<void> connect(QString ephemeralToken, std::optional<QString> realtimeUrl) override;
    QCoro::Task<void> sendAudio(AudioChunk chunk) override;
    AsyncStream<SttEvent> events() override;
    QCoro::Task<void> disconnect() override;

    void deliver(SttEvent event) { m_producer->push(std::move(event)); }
    void deliverFinal(const QString& text) { deliver({SttEvent::Final{text}}); }
    void deliverDelta(const QString& text) { deliver({SttEvent::Delta{text}}); }
    void deliverFailure(const QString& message) { deliver({SttEvent::Failure{message}}); }

    QString token;
    std::optional<QString> url;
    std::vector<QByteArray> received;
    Gate connectGate;
    Gate sendGate;
    Gate disconnectGate;

private:
    CallLog& m_log;
    std::string m_name;
    std::optional<AsyncStream<SttEvent>::Producer> m_producer;
};

class FakeTts final : public TtsServiceProtocol {
public:
    explicit FakeTts(CallLog& log) : m_log(log) {}

    void prepare() override;
    void feedToken(const QString& token) override;
    void flush() override;
    void stop() override;
    void setOnPlayingChanged(std::function<void(bool)> callback) override;

    void play(bool isPlaying);

    int preparations = 0;
    QStringList fed;

private:
    CallLog& m_log;
    std::function<void(bool)> m_onPlayingChanged;
};

class FakeScreenShare final : public ScreenShareServiceProtocol {
public:
    explicit FakeScreenShare(CallLog& log) : m_log(log) {}

    QCoro::Task<void> start(QString id, QString base, std::optional<QString> token, ScreenShareOptions with) override;
    QCoro::Task<void> stop() override;

    QString sessionId;
    QString httpBase;
    std::optional<QString> authToken;
    ScreenShareOptions options;

private:
    CallLog& m_log;
};

/// Answers requests as the test prescribes; without that, every server is out of reach.
class FakeHttp final : public HttpClientProtocol {
public:
    using Result = std::expected<HttpAnswer, Error>;

    QCoro::Task<Result> send(HttpRequest request, std::stop_token stop) override;

    /// From now on the same answer for all.
    void answer(int status, const QByteArray& body = {});
    void fail() { respond = {}; }

    static Error unreachable() { return TransportError{QStringLiteral("The server is out of reach.")}; }

    std::vector<HttpRequest> requests;
    std::function<Result(const HttpRequest&)> respond;
    Gate gate;
};

class FakeAuth final : public AuthServiceProtocol {
public:
    explicit FakeAuth(CallLog& log) : m_log(log) {}

    QCoro::Task<bool> isAuthenticated() override;
    // Copied by name: `co_return` of a member moves it away, in QCoro 0.8.
    QCoro::Task<std::optional<QString>> token() override;
    QCoro::Task<std::optional<QString>> validToken(QString) override;
    QCoro::Task<void> invalidateToken() override;
    QCoro::Task<std::expected<void, Error>> login() override;
    QCoro::Task<std::expected<void, Error>> login(QString authBaseUrl) override;
    QCoro::Task<void> logout() override;

    std::optional<QString> accessToken;
    std::optional<QString> renewedToken;  ///< What there is after `invalidateToken`.
    QString baseUrl;
    std::vector<Error> loginErrors;  ///< One a login, from the first.
    Gate loginGate;

private:
    CallLog& m_log;
};

class FakeStore final : public SessionStoreProtocol {
public:
    QCoro::Task<void> insert(SessionRecord record) override;
    QCoro::Task<void> update(SessionRecord) override;
    QCoro::Task<void> insertAll(std::vector<SessionRecord> added) override;
    QCoro::Task<void> change(QUuid id, std::function<void(SessionRecord&)> edit) override;
    QCoro::Task<std::expected<CallIds, Error>> fetchCallIds(QSet<QString> asked) override;
    QCoro::Task<std::expected<void, Error>> save() override;
    QCoro::Task<std::expected<std::vector<SessionRecord>, Error>> fetchAll() override;
    QCoro::Task<std::expected<std::optional<SessionRecord>, Error>> fetch(QUuid id) override;
    std::shared_ptr<void> observe(std::function<void(Index)> changed) override;

    /// Tells who observes of the records as they stand now, at the next turn. Needed after a test has changed
    /// `records` itself.
    void announce();

    std::vector<SessionRecord> records;
    int saves = 0;
    std::optional<Error> saveError;
    std::optional<Error> fetchError;

private:
    using Observer = std::function<void(Index)>;

    [[nodiscard]] Index index() const;

    std::vector<std::weak_ptr<Observer>> m_observers;
};

/// Answers as the test prescribes; without that, there is nothing of any kind.
class FakeBriefings final : public BriefingServiceProtocol {
public:
    template <typename T>
    using Result = std::expected<T, Error>;
    using Meetings = Result<std::vector<CalendarMeeting>>;

    struct Search {
        QString token, query;
        int limit = 0;
    };
    struct Timeline {
        std::optional<QString> companyId, contactId;
        int daysBack = 0;
    };

    Answer<std::vector<CalendarMeeting>> fetchUpcoming(QString token, int maxResults) override;
    Answer<std::vector<ResolvedCompany>> searchCompany(QString token, QString query, int limit) override;
    Answer<SalesBrief> fetchBrief(QString, CompanyQuery query) override;
    Answer<HandoffResponse> fetchHandoff(QString, CompanyQuery query) override;
    Answer<TimelineResponse> fetchTimeline(QString, std::optional<QString> companyId, std::optional<QString> contactId,
                                           int daysBack) override;

    QStringList tokens;  ///< One a request for meetings.
    int lastMaxResults = 0;
    std::function<Meetings()> respond;  ///< Without it there are no meetings.

    // What was asked, and what is answered; the answer is made when the question comes.
    std::vector<Search> searches;
    std::vector<CompanyQuery> briefs;
    std::vector<CompanyQuery> handoffs;
    std::vector<Timeline> timelines;
    std::function<Result<std::vector<ResolvedCompany>>(const QString&)> onSearch;
    std::function<Result<SalesBrief>(const CompanyQuery&)> onBrief;
    std::function<Result<HandoffResponse>(const CompanyQuery&)> onHandoff;
    std::function<Result<TimelineResponse>()> onTimeline;

    /// Holds every answer back.
    Gate gate;
    /// Hold the briefs of single companies back, by their names.
    std::map<QString, Gate> briefGates;
};

/// What the session owns of a fake socket that the test goes on looking at.
class ForwardingWebSocket final : public WebSocketServiceProtocol {
public:
    explicit ForwardingWebSocket(FakeWebSocket& target) : m_target(target) {}

    QCoro::Task<std::expected<void, Error>> connect(QUrl url) override;
    QCoro::Task<std::expected<void, Error>> send(ClientMsg message) override;
    AsyncStream<ReceivedServerMsg> receive() override;
    QCoro::Task<void> disconnect() override;

private:
    FakeWebSocket& m_target;
};

class FakeUpdater final : public UpdaterProtocol {
public:
    void checkForUpdates() override;

    int checks = 0;
};

/// Hands out fakes that the test prepared.
class FakeFactory final : public ServiceFactory {
public:
    explicit FakeFactory(CallLog& log)
        : m_log(log),
          m_screenShare(std::make_unique<FakeScreenShare>(log)),
          m_tts(std::make_unique<FakeTts>(log)),
          m_systemAudio(std::make_unique<FakeSystemAudio>(log)),
          m_systemStt(std::make_unique<FakeStt>(log, "systemStt")),
          screenShare(*m_screenShare),
          tts(*m_tts),
          systemAudio(*m_systemAudio),
          systemStt(*m_systemStt) {}

    std::unique_ptr<ScreenShareServiceProtocol> makeScreenShare() override;
    std::unique_ptr<TtsServiceProtocol> makeTts() override;
    std::unique_ptr<SystemAudioServiceProtocol> makeSystemAudio() override;
    std::unique_ptr<SttServiceProtocol> makeStt() override;
    std::unique_ptr<WebSocketServiceProtocol> makeWebSocket() override;

    /// The sockets made so far, in order, also those that the session has let go.
    std::vector<std::unique_ptr<FakeWebSocket>> listeners;
    /// Called with each new one before the session has it.
    std::function<void(FakeWebSocket&)> prepareListener;

private:
    CallLog& m_log;
    std::unique_ptr<FakeScreenShare> m_screenShare;
    std::unique_ptr<FakeTts> m_tts;
    std::unique_ptr<FakeSystemAudio> m_systemAudio;
    std::unique_ptr<FakeStt> m_systemStt;

public:
    // Good for as long as the session that took them lives.
    FakeScreenShare& screenShare;
    FakeTts& tts;
    FakeSystemAudio& systemAudio;
    FakeStt& systemStt;
};

}  // namespace corvellan::test
