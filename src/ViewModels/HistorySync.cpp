#include "Models/ServerCallRecord.h"
#include "SessionViewModel.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

QString word(bool flag) {
    return flag ? u"true"_s : u"false"_s;
}

}  // namespace

void SessionViewModel::syncHistory() {
    debugLog(u"SYNC: called, isSyncing="_s + word(m_isSyncingHistory) + u" isLocal="_s + word(isLocalServer()));
    if (m_isSyncingHistory || isLocalServer())
        return;
    setIsSyncingHistory(true);
    runDetached([this](std::stop_token) -> QCoro::Task<void> {
        const auto synced = co_await importHistory();
        if (!synced) {
            debugLog(u"SYNC_ERROR: "_s + synced.error().debugDescription());
            m_logger.error(u"syncHistory: "_s + synced.error().debugDescription());
        }
        setIsSyncingHistory(false);
    });
}

QCoro::Task<std::expected<void, Error>> SessionViewModel::importHistory() {
    const auto token = co_await authToken();
    if (!token) {
        debugLog(u"SYNC: no token"_s);
        co_return {};
    }
    SessionStoreProtocol* const store = m_modelContext;
    if (!store) {
        debugLog(u"SYNC: no modelContext"_s);
        co_return {};
    }
    auto request = restRequest(u"/calls?limit=200"_s, *token);
    if (!request.url.isValid())
        co_return {};
    const auto answer = co_await m_environment.http.send(std::move(request), {});
    if (!answer)
        co_return std::unexpected(answer.error());
    constexpr int found = 200;
    if (answer->status != found) {
        m_logger.error(u"syncHistory: HTTP "_s + QString::number(answer->status));
        co_return {};
    }
    debugLog(u"SYNC: HTTP 200, decoding "_s + QString::number(answer->body.size()) + u" bytes..."_s);
    const auto calls = decodeServerCalls(answer->body);
    if (!calls)
        co_return std::unexpected(calls.error());
    debugLog(u"SYNC: decoded "_s + QString::number(calls->size()) + u" calls"_s);

    QSet<QString> asked;
    for (const auto& call : *calls)
        asked.insert(call.callId());
    const auto stored = co_await store->fetchCallIds(std::move(asked));
    if (!stored)
        co_return std::unexpected(stored.error());
    debugLog(u"SYNC: existing="_s + QString::number(stored->records) + u" callIds="_s +
             QString::number(stored->callIds));
    std::vector<SessionRecord> imported;
    for (const auto& call : *calls)
        if (!stored->known.contains(call.callId()))
            imported.push_back(call.toSessionRecord());
    const auto count = QString::number(imported.size());
    const auto skipped = QString::number(calls->size() - imported.size());
    const bool isAny = !imported.empty();
    if (isAny)
        co_await store->insertAll(std::move(imported));
    debugLog(u"SYNC: imported="_s + count + u" skipped="_s + skipped);
    if (!isAny)
        co_return {};
    const auto saved = co_await store->save();
    if (!saved)
        co_return std::unexpected(saved.error());
    m_logger.info(u"syncHistory: imported "_s + count + u" calls from server"_s);
    debugLog(u"SYNC: saved to SwiftData"_s);
    co_return {};
}

}  // namespace corvellan
