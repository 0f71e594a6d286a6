#pragma once

#include <QTemporaryDir>

#include "Services/SessionStore/SqliteSessionStore.h"
#include "Support/FakeDesktop.h"
#include "Support/SessionFixture.h"
#include "Views/SessionHistoryView.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

/// The history over a session of fakes and a real store, in a folder of its own. Its session talks to a server
/// elsewhere, which has no calls until a test says otherwise.
class HistoryWorld {
public:
    HistoryWorld() {
        m_store = openStore();
        session().setServerURL(u"wss://coach.test/ws"_s);
        fixture.auth->accessToken = u"token"_s;
        fixture.http.answer(200, "[]");
        session().setModelContext(m_store.get());
    }
    ~HistoryWorld() {
        quieten();
        session().setModelContext(nullptr);
    }
    HistoryWorld(const HistoryWorld&) = delete;
    HistoryWorld& operator=(const HistoryWorld&) = delete;

    SessionViewModel& session() { return fixture.session(); }
    SessionHistoryView& view() {
        if (!m_view)
            m_view = std::make_unique<SessionHistoryView>(
                SessionHistoryView::Parts{session(), fixture.debugLog, detailParts()});
        return *m_view;
    }
    [[nodiscard]] SessionRecordDetailView::Parts detailParts() {
        return {.clock = fixture.clock,
                .browser = desktop.browser,
                .dates = {"de_DE", u"Europe/Berlin"_s},
                .reportFolder = folder.filePath(u"Documents"_s)};
    }
    SqliteSessionStore& store() { return *m_store; }

    /// A record of so long ago by the fixture's clock.
    [[nodiscard]] SessionRecord recordOf(SessionRecord::Contents contents, std::chrono::milliseconds ago = {}) const {
        return SessionRecord::make(std::move(contents), fixture.clock.wallNow() - ago);
    }
    /// Stores the records and waits until the view knows them.
    void keep(std::vector<SessionRecord> records) {
        m_kept += records.size();
        complete(m_store->insertAll(std::move(records)));
        spinUntil([this] { return isKnown(); });
    }
    QUuid keep(SessionRecord record) {
        const QUuid id = record.id;
        keep(std::vector{std::move(record)});
        return id;
    }
    /// Opens the list and waits until it shows what is stored.
    void appear() {
        view().appear();
        spinUntil([this] { return isKnown(); });
        quieten();
    }
    /// Opens a row and waits until its summary shows.
    SessionRecordDetailView* open(int row) {
        view().open(row);
        spinUntil([this] { return view().detail() != nullptr; });
        return view().detail();
    }
    /// Waits until the session has nothing under way.
    void quieten() {
        spinUntil([this] { return session().isQuiet(); });
        settle();
    }
    [[nodiscard]] SessionRecord stored(QUuid id) { return *complete(m_store->fetch(id)).value(); }

private:
    [[nodiscard]] bool isKnown() {
        const QString state = view().state();
        return m_kept == 0 ? state != u"loading" : state == u"list" && view().recordCount() == m_kept;
    }
    std::unique_ptr<SqliteSessionStore> openStore() { return std::move(complete(openInFolder()).value().store); }
    /// A moving clock: the store stamps files by it alone.
    QCoro::Task<std::expected<SqliteSessionStore::Opened, Error>> openInFolder() {
        return SqliteSessionStore::open(folder.filePath(u"sessions.sqlite"_s), m_thread.executor(), m_clock);
    }

public:
    QTemporaryDir folder;

private:
    SystemClock m_clock;
    WorkerThread m_thread{"store"};
    std::unique_ptr<SqliteSessionStore> m_store;
    std::size_t m_kept = 0;

public:
    FakeDesktop desktop;
    SessionFixture fixture;

private:
    std::unique_ptr<SessionHistoryView> m_view;
};

}  // namespace corvellan::test
