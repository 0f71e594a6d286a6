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

    QCoro::Task<std::expected<void, Error>> connect(QUrl url) override {
        m_log.push_back(m_name + ".connect");
        urls.push_back(url);
        co_await connectGate.pass();
        if (connectError)
            co_return std::unexpected(*connectError);
        auto [stream, producer] = AsyncStream<ReceivedServerMsg>::make();
        m_stream.emplace(stream);
        m_producer.emplace(producer);
        co_return {};
    }
    QCoro::Task<std::expected<void, Error>> send(ClientMsg message) override {
        m_log.push_back(m_name + ".send");
        if (sendError)
            co_return std::unexpected(*sendError);
        sent.push_back(std::move(message));
        co_return {};
    }
    AsyncStream<ReceivedServerMsg> receive() override {
        if (!m_stream)
            return AsyncStream<ReceivedServerMsg>::failed(WebSocketError{});
        return *m_stream;
    }
    QCoro::Task<void> disconnect() override {
        m_log.push_back(m_name + ".disconnect");
        if (m_producer)
            m_producer->finish();
        m_producer.reset();
        m_stream.reset();
        co_return;
    }

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

    QCoro::Task<float> audioLevel() override { co_return level; }
    QCoro::Task<bool> isMuted() override { co_return muted; }
    QCoro::Task<void> setMuted(bool value) override {
        muted = value;
        if (value)
            level = 0;
        m_log.emplace_back(value ? "audio.mute" : "audio.unmute");
        co_return;
    }
    QCoro::Task<void> clearAudioLevel() override {
        level = 0;
        co_return;
    }
    QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> startMic() override {
        m_log.emplace_back("audio.startMic");
        if (startError)
            co_return std::unexpected(*startError);
        auto [stream, producer] = AsyncStream<AudioChunk>::make();
        m_producer.emplace(producer);
        co_return stream;
    }
    QCoro::Task<void> stopMic() override {
        m_log.emplace_back("audio.stopMic");
        if (m_producer)
            m_producer->finish();
        m_producer.reset();
        level = 0;
        co_return;
    }

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

    QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> start() override {
        m_log.emplace_back("systemAudio.start");
        if (startError)
            co_return std::unexpected(*startError);
        auto [stream, producer] = AsyncStream<AudioChunk>::make();
        m_producer.emplace(producer);
        co_return stream;
    }
    QCoro::Task<void> stop() override {
        m_log.emplace_back("systemAudio.stop");
        co_return;
    }
    QCoro::Task<float> audioLevel() override { co_return level; }

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

    QCoro::Task<void> connect(QString ephemeralToken, std::optional<QString> realtimeUrl) override {
        m_log.push_back(m_name + ".connect");
        token = std::move(ephemeralToken);
        url = std::move(realtimeUrl);
        co_await connectGate.pass();
    }
    QCoro::Task<void> sendAudio(AudioChunk chunk) override {
        received.push_back(std::move(chunk.pcm));
        co_await sendGate.pass();
    }
    AsyncStream<SttEvent> events() override {
        auto [stream, producer] = AsyncStream<SttEvent>::make();
        m_producer.emplace(producer);
        return stream;
    }
    QCoro::Task<void> disconnect() override {
        m_log.push_back(m_name + ".disconnect");
        co_await disconnectGate.pass();
        if (m_producer)
            m_producer->finish();
        m_producer.reset();
    }

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

    void prepare() override { ++preparations; }
    void feedToken(const QString& token) override { fed.append(token); }
    void flush() override { m_log.emplace_back("tts.flush"); }
    void stop() override { m_log.emplace_back("tts.stop"); }
    void setOnPlayingChanged(std::function<void(bool)> callback) override { m_onPlayingChanged = std::move(callback); }

    void play(bool isPlaying) {
        if (m_onPlayingChanged)
            m_onPlayingChanged(isPlaying);
    }

    int preparations = 0;
    QStringList fed;

private:
    CallLog& m_log;
    std::function<void(bool)> m_onPlayingChanged;
};

class FakeScreenShare final : public ScreenShareServiceProtocol {
public:
    explicit FakeScreenShare(CallLog& log) : m_log(log) {}

    QCoro::Task<void> start(QString id, QString base, std::optional<QString> token, ScreenShareOptions with) override {
        m_log.emplace_back("screenShare.start");
        sessionId = std::move(id);
        httpBase = std::move(base);
        authToken = std::move(token);
        options = with;
        co_return;
    }
    QCoro::Task<void> stop() override {
        m_log.emplace_back("screenShare.stop");
        co_return;
    }

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

    QCoro::Task<Result> send(HttpRequest request, std::stop_token stop) override {
        requests.push_back(request);
        auto answer = respond ? respond(request) : Result{std::unexpected(unreachable())};
        co_await untilStopped(gate.pass(), stop);
        if (stop.stop_requested())
            co_return std::unexpected(Error::cancelled());
        co_return answer;
    }

    /// From now on the same answer for all.
    void answer(int status, const QByteArray& body = {}) {
        respond = [status, body](const HttpRequest&) { return HttpAnswer{.status = status, .body = body}; };
    }
    void fail() { respond = {}; }

    static Error unreachable() { return TransportError{QStringLiteral("The server is out of reach.")}; }

    std::vector<HttpRequest> requests;
    std::function<Result(const HttpRequest&)> respond;
    Gate gate;
};

class FakeAuth final : public AuthServiceProtocol {
public:
    explicit FakeAuth(CallLog& log) : m_log(log) {}

    QCoro::Task<bool> isAuthenticated() override { co_return accessToken.has_value(); }
    // Copied by name: `co_return` of a member moves it away, in QCoro 0.8.
    QCoro::Task<std::optional<QString>> token() override { co_return std::as_const(accessToken); }
    QCoro::Task<std::optional<QString>> validToken(QString) override { co_return std::as_const(accessToken); }
    QCoro::Task<void> invalidateToken() override {
        m_log.emplace_back("auth.invalidateToken");
        accessToken = renewedToken;
        co_return;
    }
    QCoro::Task<std::expected<void, Error>> login() override { return login({}); }
    QCoro::Task<std::expected<void, Error>> login(QString authBaseUrl) override {
        m_log.emplace_back("auth.login");
        baseUrl = std::move(authBaseUrl);
        co_await loginGate.pass();
        if (!loginErrors.empty()) {
            const auto error = loginErrors.front();
            loginErrors.erase(loginErrors.begin());
            co_return std::unexpected(error);
        }
        co_return {};
    }
    QCoro::Task<void> logout() override {
        m_log.emplace_back("auth.logout");
        co_return;
    }

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
    QCoro::Task<void> insert(SessionRecord record) override {
        records.push_back(std::move(record));
        announce();
        co_return;
    }
    QCoro::Task<void> update(SessionRecord) override { co_return; }
    QCoro::Task<void> insertAll(std::vector<SessionRecord> added) override {
        for (auto& record : added)
            records.push_back(std::move(record));
        announce();
        co_return;
    }
    QCoro::Task<void> change(QUuid id, std::function<void(SessionRecord&)> edit) override {
        for (auto& record : records)
            if (record.id == id)
                edit(record);
        announce();
        co_return;
    }
    QCoro::Task<std::expected<CallIds, Error>> fetchCallIds(QSet<QString> asked) override {
        if (fetchError)
            co_return std::unexpected(*fetchError);
        QSet<QString> callIds;
        for (const auto& record : records)
            if (record.callId)
                callIds.insert(*record.callId);
        co_return CallIds{
            .records = static_cast<qsizetype>(records.size()), .callIds = callIds.size(), .known = callIds & asked};
    }
    QCoro::Task<std::expected<void, Error>> save() override {
        ++saves;
        if (saveError)
            co_return std::unexpected(*saveError);
        co_return {};
    }
    QCoro::Task<std::expected<std::vector<SessionRecord>, Error>> fetchAll() override {
        co_return std::as_const(records);
    }
    QCoro::Task<std::expected<std::optional<SessionRecord>, Error>> fetch(QUuid id) override {
        if (fetchError)
            co_return std::unexpected(*fetchError);
        for (const auto& record : records)
            if (record.id == id)
                co_return record;
        co_return std::nullopt;
    }
    std::shared_ptr<void> observe(std::function<void(Index)> changed) override {
        auto observer = std::make_shared<Observer>(std::move(changed));
        m_observers.push_back(observer);
        announce();
        return observer;
    }

    /// Tells who observes of the records as they stand now, at the next turn. Needed after a test has changed
    /// `records` itself.
    void announce() {
        if (!m_observers.empty())
            Executor::current()->post([picture = index(), observers = m_observers] {
                for (const auto& observer : observers)
                    if (const auto present = observer.lock())
                        (*present)(picture);
            });
    }

    std::vector<SessionRecord> records;
    int saves = 0;
    std::optional<Error> saveError;
    std::optional<Error> fetchError;

private:
    using Observer = std::function<void(Index)>;

    [[nodiscard]] Index index() const {
        auto entries = std::make_shared<std::vector<SessionIndexEntry>>();
        for (const auto& record : records) {
            auto& entry = entries->emplace_back();
            entry.id = record.id;
            entry.createdDate = record.createdDate;
            entry.durationSecs = record.durationSecs;
            entry.turns = record.turns;
            entry.meddicScore = static_cast<std::int8_t>(record.meddic().score());
            std::ranges::copy(record.meddic().values(), entry.meddicCriteriaMet);
            entry.wasTrainMode = record.wasTrainMode;
            entry.audience = record.audience();
            entry.companyName = record.companyName;
            entry.scenario = record.scenario;
        }
        std::ranges::sort(*entries, std::ranges::greater{}, &SessionIndexEntry::createdDate);
        return entries;
    }

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

    Answer<std::vector<CalendarMeeting>> fetchUpcoming(QString token, int maxResults) override {
        tokens.append(token);
        lastMaxResults = maxResults;
        auto answer = respond ? respond() : Meetings{};
        co_await gate.pass();
        co_return answer;
    }
    Answer<std::vector<ResolvedCompany>> searchCompany(QString token, QString query, int limit) override {
        searches.push_back({token, query, limit});
        auto answer = onSearch ? onSearch(query) : Result<std::vector<ResolvedCompany>>{};
        co_await gate.pass();
        co_return answer;
    }
    Answer<SalesBrief> fetchBrief(QString, CompanyQuery query) override {
        briefs.push_back(query);
        auto answer = onBrief ? onBrief(query) : Result<SalesBrief>{};
        co_await gate.pass();
        co_await briefGates[query.company.value_or(QString{})].pass();
        co_return answer;
    }
    Answer<HandoffResponse> fetchHandoff(QString, CompanyQuery query) override {
        handoffs.push_back(query);
        auto answer = onHandoff ? onHandoff(query) : Result<HandoffResponse>{};
        co_await gate.pass();
        co_return answer;
    }
    Answer<TimelineResponse> fetchTimeline(QString, std::optional<QString> companyId, std::optional<QString> contactId,
                                           int daysBack) override {
        timelines.push_back({companyId, contactId, daysBack});
        auto answer = onTimeline ? onTimeline() : Result<TimelineResponse>{};
        co_await gate.pass();
        co_return answer;
    }

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

    QCoro::Task<std::expected<void, Error>> connect(QUrl url) override { return m_target.connect(std::move(url)); }
    QCoro::Task<std::expected<void, Error>> send(ClientMsg message) override {
        return m_target.send(std::move(message));
    }
    AsyncStream<ReceivedServerMsg> receive() override { return m_target.receive(); }
    QCoro::Task<void> disconnect() override { return m_target.disconnect(); }

private:
    FakeWebSocket& m_target;
};

class FakeUpdater final : public UpdaterProtocol {
public:
    void checkForUpdates() override { ++checks; }

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

    std::unique_ptr<ScreenShareServiceProtocol> makeScreenShare() override { return std::move(m_screenShare); }
    std::unique_ptr<TtsServiceProtocol> makeTts() override { return std::move(m_tts); }
    std::unique_ptr<SystemAudioServiceProtocol> makeSystemAudio() override { return std::move(m_systemAudio); }
    std::unique_ptr<SttServiceProtocol> makeStt() override { return std::move(m_systemStt); }
    std::unique_ptr<WebSocketServiceProtocol> makeWebSocket() override {
        auto& socket = *listeners.emplace_back(std::make_unique<FakeWebSocket>(m_log, "listener"));
        if (prepareListener)
            prepareListener(socket);
        return std::make_unique<ForwardingWebSocket>(socket);
    }

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
