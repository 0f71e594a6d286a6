#include "Services/SessionStore/SqliteSessionStore.h"

#include <QStandardPaths>

#include "Base/Log.h"
#include "StoreFixture.h"
#include "Support/TestLoop.h"

namespace corvellan {

namespace {

using test::companies;
using test::complete;
using test::fullRecord;
using test::moment;
using test::record;
using test::spinUntil;
using namespace Qt::StringLiterals;

QStringList companies(const SessionStoreProtocol::Index& index) {
    QStringList names;
    for (const auto& entry : *index)
        names << entry.companyName.value_or(u"-"_s);
    return names;
}

/// The same tests on the main thread's executor and on a thread of its own.
class SqliteSessionStoreTest : public test::StoreFixture, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        setLogSink([this](const LogLine& line) {
            const std::scoped_lock lock{m_logMutex};
            m_log.push_back(line);
        });
    }
    void TearDown() override { setLogSink({}); }

    [[nodiscard]] Executor& executor() { return GetParam() ? m_thread.executor() : test::mainExecutor(); }

    std::expected<std::unique_ptr<SqliteSessionStore>, Error> tryOpen() {
        std::expected<std::unique_ptr<SqliteSessionStore>, Error> result;
        complete(keepOpened(result));
        return result;
    }
    std::unique_ptr<SqliteSessionStore> opened() {
        auto store = tryOpen();
        if (!store)
            throw std::runtime_error(store.error().errorDescription().toStdString());
        return std::move(*store);
    }

    /// The index that an observer gets first.
    static QStringList indexOf(SqliteSessionStore& store) {
        std::optional<QStringList> seen;
        const auto handle =
            store.observe([&](const SessionStoreProtocol::Index& index) { seen = seen.value_or(companies(index)); });
        EXPECT_TRUE(spinUntil([&] { return seen.has_value(); }));
        return seen.value_or(QStringList{});
    }
    static QStringList all(SqliteSessionStore& store) { return companies(complete(store.fetchAll()).value()); }
    static void insertAndSave(SqliteSessionStore& store, const SessionRecord& record) {
        complete(store.insert(record));
        EXPECT_TRUE(complete(store.save()).has_value());
    }

    [[nodiscard]] std::vector<LogLine> log() {
        const std::scoped_lock lock{m_logMutex};
        return m_log;
    }

private:
    QCoro::Task<void> keepOpened(std::expected<std::unique_ptr<SqliteSessionStore>, Error>& result) {
        auto opened = co_await SqliteSessionStore::open(path(), executor(), m_clock);
        if (opened)
            result = std::move(opened->store);
        else
            result = std::unexpected(opened.error());
    }

    test::ManualClock m_clock;
    WorkerThread m_thread{"store"};
    std::mutex m_logMutex;
    std::vector<LogLine> m_log;
};

INSTANTIATE_TEST_SUITE_P(Executors, SqliteSessionStoreTest, testing::Bool(),
                         [](const auto& info) { return info.param ? "threaded" : "inline"; });

}  // namespace

TEST_P(SqliteSessionStoreTest, liesInTheUsersDataFolder) {
    EXPECT_EQ(SqliteSessionStore::defaultPath(),
              QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/corvellan/sessions.sqlite"_s);
}

TEST_P(SqliteSessionStoreTest, anInsertedRecordIsSeenAtOnceAndDurableAfterSave) {
    auto store = opened();
    const auto full = fullRecord();
    complete(store->insert(full));
    EXPECT_EQ(complete(store->fetchAll()).value(), std::vector{full});
    EXPECT_EQ(complete(store->fetch(full.id)).value(), full);
    EXPECT_EQ(ask("SELECT count(*) FROM SessionRecord"), "0");
    EXPECT_TRUE(complete(store->save()).has_value());
    EXPECT_EQ(ask("SELECT count(*) FROM SessionRecord"), "1");
    EXPECT_EQ(complete(store->fetch(full.id)).value(), full);
    store.reset();
    EXPECT_EQ(complete(opened()->fetchAll()).value(), std::vector{full});
}

TEST_P(SqliteSessionStoreTest, whatWasNotSavedIsGoneWithTheStore) {
    complete(opened()->insert(record(u"a"_s)));
    EXPECT_EQ(all(*opened()), QStringList{});
}

TEST_P(SqliteSessionStoreTest, savingNothingSucceeds) {
    EXPECT_TRUE(complete(opened()->save()).has_value());
}

TEST_P(SqliteSessionStoreTest, fetchesNewestFirstSavedOrNot) {
    auto store = opened();
    insertAndSave(*store, record(u"b"_s, 2));
    insertAndSave(*store, record(u"a1"_s, 1));
    complete(store->insert(record(u"c"_s, 3)));
    complete(store->insert(record(u"a2"_s, 1)));
    const QStringList expected{u"c"_s, u"b"_s, u"a2"_s, u"a1"_s};
    EXPECT_EQ(all(*store), expected);
    EXPECT_EQ(indexOf(*store), expected);
    EXPECT_TRUE(complete(store->save()).has_value());
    EXPECT_EQ(all(*store), expected);
    store.reset();
    EXPECT_EQ(indexOf(*opened()), expected);
}

TEST_P(SqliteSessionStoreTest, updatesARecordSavedOrNot) {
    auto store = opened();
    auto saved = record(u"saved"_s, 1);
    insertAndSave(*store, saved);
    auto fresh = record(u"fresh"_s, 1);
    complete(store->insert(fresh));
    saved.feedbackRating = 1;
    saved.companyName = u"saved too"_s;
    fresh.outcome = u"voicemail"_s;
    fresh.companyName = u"fresh too"_s;
    complete(store->update(saved));
    complete(store->update(fresh));
    EXPECT_EQ(complete(store->fetch(saved.id)).value(), saved);
    EXPECT_EQ(complete(store->fetchAll()).value(), (std::vector{fresh, saved}));
    EXPECT_EQ(indexOf(*store), (QStringList{u"fresh too"_s, u"saved too"_s}));
    EXPECT_TRUE(complete(store->save()).has_value());
    store.reset();
    EXPECT_EQ(complete(opened()->fetchAll()).value(), (std::vector{fresh, saved}));
}

TEST_P(SqliteSessionStoreTest, updatingAnUnknownRecordDoesNothing) {
    auto store = opened();
    complete(store->update(record(u"stranger"_s)));
    EXPECT_TRUE(complete(store->save()).has_value());
    EXPECT_EQ(all(*store), QStringList{});
    EXPECT_EQ(indexOf(*store), QStringList{});
}

TEST_P(SqliteSessionStoreTest, insertingAKnownIdReplacesTheRecord) {
    auto store = opened();
    auto twice = record(u"once"_s);
    insertAndSave(*store, twice);
    twice.companyName = u"twice"_s;
    insertAndSave(*store, twice);
    EXPECT_EQ(all(*store), QStringList{u"twice"_s});
    EXPECT_EQ(indexOf(*store), QStringList{u"twice"_s});
}

TEST_P(SqliteSessionStoreTest, findsNothingUnderAnUnknownId) {
    EXPECT_EQ(complete(opened()->fetch(QUuid::createUuid())).value(), std::nullopt);
}

TEST_P(SqliteSessionStoreTest, aFailedSaveKeepsTheChangesForTheNext) {
    auto store = opened();
    execute("CREATE TRIGGER refuse BEFORE INSERT ON SessionRecord BEGIN SELECT RAISE(ABORT, 'full'); END");
    complete(store->insert(record(u"a"_s, 1)));
    complete(store->insert(record(u"b"_s, 2)));
    const auto failed = complete(store->save());
    ASSERT_FALSE(failed.has_value());
    ASSERT_NE(failed.error().as<StoreError>(), nullptr);
    EXPECT_TRUE(failed.error().errorDescription().contains(u"full"_s));
    EXPECT_EQ(all(*store), (QStringList{u"b"_s, u"a"_s}));
    execute("DROP TRIGGER refuse");
    EXPECT_TRUE(complete(store->save()).has_value());
    store.reset();
    EXPECT_EQ(all(*opened()), (QStringList{u"b"_s, u"a"_s}));
}

TEST_P(SqliteSessionStoreTest, theLiveQueryTellsThePresentIndexAndThenEveryChange) {
    auto store = opened();
    insertAndSave(*store, record(u"old"_s, 1));
    store.reset();
    store = opened();
    std::vector<QStringList> seen;
    const auto handle =
        store->observe([&](const SessionStoreProtocol::Index& index) { seen.push_back(companies(index)); });
    ASSERT_TRUE(spinUntil([&] { return seen.size() == 1; }));
    auto fresh = record(u"new"_s, 2);
    complete(store->insert(fresh));
    ASSERT_TRUE(spinUntil([&] { return seen.size() == 2; }));
    fresh.companyName = u"newer"_s;
    complete(store->update(fresh));
    ASSERT_TRUE(spinUntil([&] { return seen.size() == 3; }));
    EXPECT_EQ(seen[0], QStringList{u"old"_s});
    EXPECT_EQ(seen[1], (QStringList{u"new"_s, u"old"_s}));
    EXPECT_EQ(seen[2], (QStringList{u"newer"_s, u"old"_s}));
}

TEST_P(SqliteSessionStoreTest, theLiveQueryHasSeenAChangeBeforeItsAuthorGoesOn) {
    auto store = opened();
    QStringList seen;
    const auto handle = store->observe([&](const SessionStoreProtocol::Index& index) { seen = companies(index); });
    indexOf(*store);
    complete(store->insert(record(u"a"_s)));
    test::settle();
    EXPECT_EQ(seen, QStringList{u"a"_s});
}

TEST_P(SqliteSessionStoreTest, theLiveQueryEndsWithItsHandle) {
    auto store = opened();
    int ended = 0;
    auto handle = store->observe([&](const SessionStoreProtocol::Index&) { ++ended; });
    ASSERT_TRUE(spinUntil([&] { return ended == 1; }));
    // Another one, further behind, shows that everything meant for the first would have come.
    int marker = 0;
    const auto other = store->observe([&](const SessionStoreProtocol::Index&) { ++marker; });
    ASSERT_TRUE(spinUntil([&] { return marker == 1; }));
    handle.reset();
    complete(store->insert(record(u"a"_s)));
    ASSERT_TRUE(spinUntil([&] { return marker == 2; }));
    EXPECT_EQ(ended, 1);
}

TEST_P(SqliteSessionStoreTest, anObserverMayEndItselfFromWithin) {
    auto store = opened();
    int calls = 0;
    std::shared_ptr<void> handle;
    handle = store->observe([&](const SessionStoreProtocol::Index&) {
        ++calls;
        handle.reset();
    });
    ASSERT_TRUE(spinUntil([&] { return calls == 1; }));
    complete(store->insert(record(u"a"_s)));
    indexOf(*store);
    EXPECT_EQ(calls, 1);
}

TEST_P(SqliteSessionStoreTest, anObserverMayOutliveTheStore) {
    auto store = opened();
    int calls = 0;
    const auto handle = store->observe([&](const SessionStoreProtocol::Index&) { ++calls; });
    store.reset();
    test::settle();
    EXPECT_LE(calls, 1);
}

TEST_P(SqliteSessionStoreTest, opensBeforeTheIndexIsRead) {
    auto store = opened();
    insertAndSave(*store, record(u"stored"_s, 1));
    store.reset();
    store = opened();
    // Whatever comes between `open` and the index is in it.
    complete(store->insert(record(u"early"_s, 2)));
    EXPECT_EQ(indexOf(*store), (QStringList{u"early"_s, u"stored"_s}));
}

TEST_P(SqliteSessionStoreTest, aDamagedFileIsSetAsideWithALogLineAndANewStoreMade) {
    makeFolder();
    writeFile(path(), "this is not a database");
    writeFile(path() + u"-wal"_s, "nor a log");
    auto store = opened();
    EXPECT_EQ(all(*store), QStringList{});
    insertAndSave(*store, record(u"new life"_s));
    store.reset();
    EXPECT_EQ(all(*opened()), QStringList{u"new life"_s});
    const auto kept = file(u"data/sessions.damaged-20260302-100000.sqlite"_s);
    EXPECT_EQ(bytesOf(kept), "this is not a database");
    EXPECT_EQ(bytesOf(kept + u"-wal"_s), "nor a log");
    const auto lines = log();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].category, u"SessionStore"_s);
    EXPECT_EQ(lines[0].level, LogLevel::error);
    EXPECT_TRUE(lines[0].text.contains(u"sessions.damaged-20260302-100000.sqlite"_s));
}

TEST_P(SqliteSessionStoreTest, aSecondDamagedFileDoesNotOverwriteTheFirst) {
    makeFolder();
    writeFile(path(), "first damage");
    opened();
    QFile::remove(path());
    writeFile(path(), "second damage");
    opened();
    EXPECT_EQ(bytesOf(file(u"data/sessions.damaged-20260302-100000.sqlite"_s)), "first damage");
    EXPECT_EQ(bytesOf(file(u"data/sessions.damaged-20260302-100000-2.sqlite"_s)), "second damage");
}

TEST_P(SqliteSessionStoreTest, damageThatShowsWhileTheIndexIsReadIsSetAsideToo) {
    {
        auto store = opened();
        for (int i = 0; i < 200; ++i)
            complete(store->insert(record(u"company %1"_s.arg(i), i)));
        ASSERT_TRUE(complete(store->save()).has_value());
    }
    // The schema stays readable; the pages of rows and index do not.
    auto bytes = bytesOf(path());
    ASSERT_GT(bytes.size(), 5 * 4096);
    bytes.replace(2 * 4096, bytes.size() - 2 * 4096, QByteArray(bytes.size() - 2 * 4096, '\x55'));
    writeFile(path(), bytes);
    auto store = opened();
    EXPECT_EQ(indexOf(*store), QStringList{});
    insertAndSave(*store, record(u"new life"_s));
    EXPECT_EQ(all(*store), QStringList{u"new life"_s});
    EXPECT_EQ(bytesOf(file(u"data/sessions.damaged-20260302-100000.sqlite"_s)), bytes);
    EXPECT_EQ(log().size(), 1U);
}

TEST_P(SqliteSessionStoreTest, aStoreOfANewerSchemaIsRefused) {
    opened();
    execute("PRAGMA user_version = 99");
    const auto result = tryOpen();
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().as<StoreError>()->kind, StoreError::Kind::newerSchema);
    EXPECT_EQ(ask("PRAGMA user_version"), "99");
    EXPECT_EQ(filesBesideStore().filter(u"damaged"_s), QStringList{});
}

TEST_P(SqliteSessionStoreTest, aPlaceThatCannotBeWrittenIsAFailure) {
    QDir{}.mkpath(path());
    const auto result = tryOpen();
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().as<StoreError>()->kind, StoreError::Kind::failed);
}

TEST_P(SqliteSessionStoreTest, manyRecordsComeInWithOneNotice) {
    auto store = opened();
    std::vector<QStringList> seen;
    const auto handle =
        store->observe([&](const SessionStoreProtocol::Index& index) { seen.push_back(companies(index)); });
    ASSERT_TRUE(spinUntil([&] { return seen.size() == 1; }));
    complete(store->insertAll({record(u"a"_s, 1), record(u"c"_s, 3), record(u"b"_s, 2)}));
    ASSERT_TRUE(spinUntil([&] { return seen.size() == 2; }));
    complete(store->insert(record(u"d"_s, 4)));
    ASSERT_TRUE(spinUntil([&] { return seen.size() == 3; }));
    EXPECT_EQ(seen[1], (QStringList{u"c"_s, u"b"_s, u"a"_s}));
    EXPECT_TRUE(complete(store->save()));
    store.reset();
    EXPECT_EQ(indexOf(*opened()), (QStringList{u"d"_s, u"c"_s, u"b"_s, u"a"_s}));
}

TEST_P(SqliteSessionStoreTest, aChangeConcernsTheRecordAsItStandsThen) {
    auto store = opened();
    const auto saved = record(u"saved"_s, 1);
    insertAndSave(*store, saved);
    const auto fresh = record(u"fresh"_s, 2);
    complete(store->insert(fresh));
    for (const auto id : {saved.id, fresh.id}) {
        auto rating = store->change(id, [](SessionRecord& each) { each.feedbackRating = 1; });
        auto outcome = store->change(id, [](SessionRecord& each) { each.outcome = u"lost"_s; });
        complete(std::move(outcome));
        complete(std::move(rating));
    }
    EXPECT_TRUE(complete(store->save()));
    store.reset();
    store = opened();
    for (const auto id : {saved.id, fresh.id}) {
        const auto changed = complete(store->fetch(id)).value().value();
        EXPECT_EQ(changed.feedbackRating, 1);
        EXPECT_EQ(changed.outcome, u"lost"_s);
    }
    EXPECT_EQ(all(*store), (QStringList{u"fresh"_s, u"saved"_s}));
}

TEST_P(SqliteSessionStoreTest, aChangeOfAnUnknownRecordDoesNothing) {
    auto store = opened();
    bool wasAsked = false;
    complete(store->change(QUuid::createUuid(), [&](SessionRecord&) { wasAsked = true; }));
    EXPECT_FALSE(wasAsked);
    EXPECT_EQ(all(*store), QStringList{});
}

TEST_P(SqliteSessionStoreTest, callIdsAreThoseOfSavedAndUnsavedRecords) {
    auto store = opened();
    auto saved = record(u"saved"_s, 1);
    saved.callId = u"c-1"_s;
    insertAndSave(*store, saved);
    saved.feedbackRating = 1;
    complete(store->update(saved));
    auto fresh = record(u"fresh"_s, 2);
    fresh.callId = u"c-2"_s;
    complete(store->insert(fresh));
    complete(store->insert(record(u"of no call"_s, 3)));
    const auto found = complete(store->fetchCallIds({u"c-1"_s, u"c-2"_s, u"c-3"_s})).value();
    EXPECT_EQ(found.records, 3);
    EXPECT_EQ(found.callIds, 2);
    EXPECT_EQ(found.known, (QSet{u"c-1"_s, u"c-2"_s}));
    EXPECT_EQ(complete(store->fetchCallIds({u"c-2"_s})).value().known, QSet{u"c-2"_s});
}

}  // namespace corvellan
