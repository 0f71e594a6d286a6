#include "FakeServices.h"

#include <algorithm>

namespace corvellan::test {

// MARK: - FakeWebSocket

QCoro::Task<std::expected<void, Error>> FakeWebSocket::connect(QUrl url) {
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

QCoro::Task<std::expected<void, Error>> FakeWebSocket::send(ClientMsg message) {
    m_log.push_back(m_name + ".send");
    if (sendError)
        co_return std::unexpected(*sendError);
    sent.push_back(std::move(message));
    co_return {};
}

AsyncStream<ReceivedServerMsg> FakeWebSocket::receive() {
    if (!m_stream)
        return AsyncStream<ReceivedServerMsg>::failed(WebSocketError{});
    return *m_stream;
}

QCoro::Task<void> FakeWebSocket::disconnect() {
    m_log.push_back(m_name + ".disconnect");
    if (m_producer)
        m_producer->finish();
    m_producer.reset();
    m_stream.reset();
    co_return;
}

// MARK: - FakeAudio

QCoro::Task<float> FakeAudio::audioLevel() {
    co_return level;
}

QCoro::Task<bool> FakeAudio::isMuted() {
    co_return muted;
}

QCoro::Task<void> FakeAudio::setMuted(bool value) {
    muted = value;
    if (value)
        level = 0;
    m_log.emplace_back(value ? "audio.mute" : "audio.unmute");
    co_return;
}

QCoro::Task<void> FakeAudio::clearAudioLevel() {
    level = 0;
    co_return;
}

QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> FakeAudio::startMic() {
    m_log.emplace_back("audio.startMic");
    if (startError)
        co_return std::unexpected(*startError);
    auto [stream, producer] = AsyncStream<AudioChunk>::make();
    m_producer.emplace(producer);
    co_return stream;
}

QCoro::Task<void> FakeAudio::stopMic() {
    m_log.emplace_back("audio.stopMic");
    if (m_producer)
        m_producer->finish();
    m_producer.reset();
    level = 0;
    co_return;
}

// MARK: - FakeSystemAudio

QCoro::Task<std::expected<AsyncStream<AudioChunk>, Error>> FakeSystemAudio::start() {
    m_log.emplace_back("systemAudio.start");
    if (startError)
        co_return std::unexpected(*startError);
    auto [stream, producer] = AsyncStream<AudioChunk>::make();
    m_producer.emplace(producer);
    co_return stream;
}

QCoro::Task<void> FakeSystemAudio::stop() {
    m_log.emplace_back("systemAudio.stop");
    co_return;
}

QCoro::Task<float> FakeSystemAudio::audioLevel() {
    co_return level;
}

// MARK: - FakeStt

QCoro::Task<void> FakeStt::connect(QString ephemeralToken, std::optional<QString> realtimeUrl) {
    m_log.push_back(m_name + ".connect");
    token = std::move(ephemeralToken);
    url = std::move(realtimeUrl);
    co_await connectGate.pass();
}

QCoro::Task<void> FakeStt::sendAudio(AudioChunk chunk) {
    received.push_back(std::move(chunk.pcm));
    co_await sendGate.pass();
}

AsyncStream<SttEvent> FakeStt::events() {
    auto [stream, producer] = AsyncStream<SttEvent>::make();
    m_producer.emplace(producer);
    return stream;
}

QCoro::Task<void> FakeStt::disconnect() {
    m_log.push_back(m_name + ".disconnect");
    co_await disconnectGate.pass();
    if (m_producer)
        m_producer->finish();
    m_producer.reset();
}

// MARK: - FakeTts

void FakeTts::prepare() {
    ++preparations;
}

void FakeTts::feedToken(const QString& token) {
    fed.append(token);
}

void FakeTts::flush() {
    m_log.emplace_back("tts.flush");
}

void FakeTts::stop() {
    m_log.emplace_back("tts.stop");
}

void FakeTts::setOnPlayingChanged(std::function<void(bool)> callback) {
    m_onPlayingChanged = std::move(callback);
}

void FakeTts::play(bool isPlaying) {
    if (m_onPlayingChanged)
        m_onPlayingChanged(isPlaying);
}

// MARK: - FakeScreenShare

QCoro::Task<void> FakeScreenShare::start(QString id, QString base, std::optional<QString> token,
                                         ScreenShareOptions with) {
    m_log.emplace_back("screenShare.start");
    sessionId = std::move(id);
    httpBase = std::move(base);
    authToken = std::move(token);
    options = with;
    co_return;
}

QCoro::Task<void> FakeScreenShare::stop() {
    m_log.emplace_back("screenShare.stop");
    co_return;
}

// MARK: - FakeHttp

QCoro::Task<FakeHttp::Result> FakeHttp::send(HttpRequest request, std::stop_token stop) {
    requests.push_back(request);
    auto answer = respond ? respond(request) : Result{std::unexpected(unreachable())};
    co_await untilStopped(gate.pass(), stop);
    if (stop.stop_requested())
        co_return std::unexpected(Error::cancelled());
    co_return answer;
}

void FakeHttp::answer(int status, const QByteArray& body) {
    respond = [status, body](const HttpRequest&) { return HttpAnswer{.status = status, .body = body}; };
}

// MARK: - FakeAuth

QCoro::Task<bool> FakeAuth::isAuthenticated() {
    co_return accessToken.has_value();
}

QCoro::Task<std::optional<QString>> FakeAuth::token() {
    co_return std::as_const(accessToken);
}

QCoro::Task<std::optional<QString>> FakeAuth::validToken(QString) {
    co_return std::as_const(accessToken);
}

QCoro::Task<void> FakeAuth::invalidateToken() {
    m_log.emplace_back("auth.invalidateToken");
    accessToken = renewedToken;
    co_return;
}

QCoro::Task<std::expected<void, Error>> FakeAuth::login() {
    return login({});
}

QCoro::Task<std::expected<void, Error>> FakeAuth::login(QString authBaseUrl) {
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

QCoro::Task<void> FakeAuth::logout() {
    m_log.emplace_back("auth.logout");
    co_return;
}

// MARK: - FakeStore

QCoro::Task<void> FakeStore::insert(SessionRecord record) {
    records.push_back(std::move(record));
    announce();
    co_return;
}

QCoro::Task<void> FakeStore::update(SessionRecord) {
    co_return;
}

QCoro::Task<void> FakeStore::insertAll(std::vector<SessionRecord> added) {
    for (auto& record : added)
        records.push_back(std::move(record));
    announce();
    co_return;
}

QCoro::Task<void> FakeStore::change(QUuid id, std::function<void(SessionRecord&)> edit) {
    for (auto& record : records)
        if (record.id == id)
            edit(record);
    announce();
    co_return;
}

QCoro::Task<std::expected<FakeStore::CallIds, Error>> FakeStore::fetchCallIds(QSet<QString> asked) {
    if (fetchError)
        co_return std::unexpected(*fetchError);
    QSet<QString> callIds;
    for (const auto& record : records)
        if (record.callId)
            callIds.insert(*record.callId);
    co_return CallIds{
        .records = static_cast<qsizetype>(records.size()), .callIds = callIds.size(), .known = callIds & asked};
}

QCoro::Task<std::expected<void, Error>> FakeStore::save() {
    ++saves;
    if (saveError)
        co_return std::unexpected(*saveError);
    co_return {};
}

QCoro::Task<std::expected<std::vector<SessionRecord>, Error>> FakeStore::fetchAll() {
    co_return std::as_const(records);
}

QCoro::Task<std::expected<std::optional<SessionRecord>, Error>> FakeStore::fetch(QUuid id) {
    if (fetchError)
        co_return std::unexpected(*fetchError);
    for (const auto& record : records)
        if (record.id == id)
            co_return record;
    co_return std::nullopt;
}

std::shared_ptr<void> FakeStore::observe(std::function<void(Index)> changed) {
    auto observer = std::make_shared<Observer>(std::move(changed));
    m_observers.push_back(observer);
    announce();
    return observer;
}

void FakeStore::announce() {
    if (!m_observers.empty())
        Executor::current()->post([picture = index(), observers = m_observers] {
            for (const auto& observer : observers)
                if (const auto present = observer.lock())
                    (*present)(picture);
        });
}

FakeStore::Index FakeStore::index() const {
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

// MARK: - FakeBriefings

FakeBriefings::Answer<std::vector<CalendarMeeting>> FakeBriefings::fetchUpcoming(QString token, int maxResults) {
    tokens.append(token);
    lastMaxResults = maxResults;
    auto answer = respond ? respond() : Meetings{};
    co_await gate.pass();
    co_return answer;
}

FakeBriefings::Answer<std::vector<ResolvedCompany>> FakeBriefings::searchCompany(QString token, QString query,
                                                                                 int limit) {
    searches.push_back({token, query, limit});
    auto answer = onSearch ? onSearch(query) : Result<std::vector<ResolvedCompany>>{};
    co_await gate.pass();
    co_return answer;
}

FakeBriefings::Answer<SalesBrief> FakeBriefings::fetchBrief(QString, CompanyQuery query) {
    briefs.push_back(query);
    auto answer = onBrief ? onBrief(query) : Result<SalesBrief>{};
    co_await gate.pass();
    co_await briefGates[query.company.value_or(QString{})].pass();
    co_return answer;
}

FakeBriefings::Answer<HandoffResponse> FakeBriefings::fetchHandoff(QString, CompanyQuery query) {
    handoffs.push_back(query);
    auto answer = onHandoff ? onHandoff(query) : Result<HandoffResponse>{};
    co_await gate.pass();
    co_return answer;
}

FakeBriefings::Answer<TimelineResponse> FakeBriefings::fetchTimeline(QString, std::optional<QString> companyId,
                                                                     std::optional<QString> contactId, int daysBack) {
    timelines.push_back({companyId, contactId, daysBack});
    auto answer = onTimeline ? onTimeline() : Result<TimelineResponse>{};
    co_await gate.pass();
    co_return answer;
}

// MARK: - ForwardingWebSocket

QCoro::Task<std::expected<void, Error>> ForwardingWebSocket::connect(QUrl url) {
    return m_target.connect(std::move(url));
}

QCoro::Task<std::expected<void, Error>> ForwardingWebSocket::send(ClientMsg message) {
    return m_target.send(std::move(message));
}

AsyncStream<ReceivedServerMsg> ForwardingWebSocket::receive() {
    return m_target.receive();
}

QCoro::Task<void> ForwardingWebSocket::disconnect() {
    return m_target.disconnect();
}

// MARK: - FakeUpdater

void FakeUpdater::checkForUpdates() {
    ++checks;
}

// MARK: - FakeFactory

std::unique_ptr<ScreenShareServiceProtocol> FakeFactory::makeScreenShare() {
    return std::move(m_screenShare);
}

std::unique_ptr<TtsServiceProtocol> FakeFactory::makeTts() {
    return std::move(m_tts);
}

std::unique_ptr<SystemAudioServiceProtocol> FakeFactory::makeSystemAudio() {
    return std::move(m_systemAudio);
}

std::unique_ptr<SttServiceProtocol> FakeFactory::makeStt() {
    return std::move(m_systemStt);
}

std::unique_ptr<WebSocketServiceProtocol> FakeFactory::makeWebSocket() {
    auto& socket = *listeners.emplace_back(std::make_unique<FakeWebSocket>(m_log, "listener"));
    if (prepareListener)
        prepareListener(socket);
    return std::make_unique<ForwardingWebSocket>(socket);
}

}  // namespace corvellan::test
