#include "Services/SessionStore/SessionDatabase.h"

#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include "Services/SessionStore/SessionSchema.h"
#include "StoreFixture.h"

namespace corvellan {

namespace {

using test::companies;
using test::fullRecord;
using test::moment;
using test::record;
using namespace Qt::StringLiterals;

class SessionDatabaseTest : public test::StoreFixture {
protected:
    [[nodiscard]] std::unique_ptr<SessionDatabase> opened() const {
        auto database = SessionDatabase::open(path());
        if (!database) {
            ADD_FAILURE() << database.error().errorDescription().toStdString();
            return nullptr;
        }
        return std::move(*database);
    }
    void make() const { EXPECT_NE(opened(), nullptr); }
    [[nodiscard]] StoreError refusal() const {
        const auto database = SessionDatabase::open(path());
        if (database) {
            ADD_FAILURE() << "opened, though it should not have";
            return {};
        }
        return database.error();
    }
    void store(const std::vector<SessionRecord>& records) const { ASSERT_TRUE(opened()->write(records).has_value()); }
    [[nodiscard]] std::vector<SessionRecord> all() const {
        std::vector<SessionRecord> records;
        for (auto& stored : opened()->readAll().value())
            records.push_back(std::move(stored.record));
        return records;
    }

    /// Runs `work` in a process of its own, which is killed as soon as `work` has returned.
    template <typename Work>
    static void runAndKill(Work work) {
        int pipeEnds[2];
        ASSERT_EQ(pipe(pipeEnds), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            work();
            const char done = 1;
            (void)!write(pipeEnds[1], &done, 1);
            while (true)
                pause();
        }
        close(pipeEnds[1]);
        char done = 0;
        EXPECT_EQ(read(pipeEnds[0], &done, 1), 1) << "the process ended before its time";
        close(pipeEnds[0]);
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
    }
};

/// The table with its required columns alone, and one row in it.
constexpr const char* tableWithoutOptionalColumns =
    "CREATE TABLE SessionRecord (id TEXT NOT NULL, createdDate INTEGER NOT NULL, durationSecs INTEGER NOT NULL,"
    " turns INTEGER NOT NULL, meddicData BLOB NOT NULL, discData BLOB NOT NULL, coachingPoints TEXT NOT NULL,"
    " transcript TEXT NOT NULL, scenario TEXT, wasTrainMode INTEGER NOT NULL, UNIQUE (id));"
    "INSERT INTO SessionRecord VALUES ('11111111-2222-3333-4444-555555555555', 1772445600000, 61, 3, x'', x'',"
    " '[\"p\"]', '[]', 's', 1)";

}  // namespace

TEST_F(SessionDatabaseTest, makesFolderAndFileWhereThereAreNone) {
    EXPECT_NE(opened(), nullptr);
    EXPECT_TRUE(QFile::exists(path()));
}

TEST_F(SessionDatabaseTest, theColumnsAreTheRecordsPropertiesInTheirOrder) {
    make();
    EXPECT_EQ(ask("SELECT group_concat(name) FROM pragma_table_info('SessionRecord')"),
              "id,createdDate,durationSecs,turns,meddicData,discData,coachingPoints,transcript,scenario,wasTrainMode,"
              "companyName,calendarEventId,callId,outcome,feedbackRating,meddicEvidence,audienceRaw");
}

TEST_F(SessionDatabaseTest, tellsItsSchemaAndUsesAWriteAheadLog) {
    make();
    EXPECT_EQ(ask("PRAGMA user_version"), "1");
    EXPECT_EQ(ask("PRAGMA journal_mode"), "wal");
}

TEST_F(SessionDatabaseTest, onlyTheUserMayReadTheFile) {
    make();
    EXPECT_EQ(QFile::permissions(path()) & ~(QFile::ReadUser | QFile::WriteUser), QFile::ReadOwner | QFile::WriteOwner);
}

TEST_F(SessionDatabaseTest, keepsEveryField) {
    const auto full = fullRecord();
    store({full});
    EXPECT_EQ(all(), std::vector{full});
    EXPECT_EQ(opened()->read(full.id).value(), full);
}

TEST_F(SessionDatabaseTest, keepsWhatIsAbsentAbsent) {
    SessionRecord bare;
    bare.id = QUuid::createUuid();
    store({bare});
    EXPECT_EQ(all(), std::vector{bare});
    EXPECT_EQ(ask("SELECT count(*) FROM SessionRecord WHERE scenario IS NULL AND companyName IS NULL AND callId IS NULL"
                  " AND calendarEventId IS NULL AND outcome IS NULL AND feedbackRating IS NULL AND"
                  " meddicEvidence IS NULL AND audienceRaw IS NULL"),
              "1");
}

TEST_F(SessionDatabaseTest, storesPlainFormsThatOtherToolsCanRead) {
    const auto full = fullRecord();
    store({full});
    EXPECT_EQ(ask("SELECT id FROM SessionRecord"), full.id.toString(QUuid::WithoutBraces).toStdString());
    EXPECT_EQ(ask("SELECT createdDate FROM SessionRecord"), "1772445600123");
    EXPECT_EQ(ask("SELECT json_extract(transcript, '$[0]') FROM SessionRecord"), "[Mic] Hello");
    EXPECT_EQ(ask("SELECT json_extract(meddicEvidence, '$[1]') IS NULL FROM SessionRecord"), "1");
    EXPECT_EQ(ask("SELECT json_extract(CAST(meddicData AS TEXT), '$.champion') FROM SessionRecord"), "1");
}

TEST_F(SessionDatabaseTest, datesBefore1970AreKept) {
    auto old = record(u"old"_s);
    old.createdDate = WallTime{std::chrono::milliseconds{-1}};
    store({old});
    EXPECT_EQ(all(), std::vector{old});
}

TEST_F(SessionDatabaseTest, readsNewestFirstAndTheLastInsertionFirstAmongEqualDates) {
    store({record(u"b"_s, 2), record(u"a1"_s, 1), record(u"c"_s, 3), record(u"a2"_s, 1)});
    EXPECT_EQ(companies(all()), (QStringList{u"c"_s, u"b"_s, u"a2"_s, u"a1"_s}));
}

TEST_F(SessionDatabaseTest, aRecordOfAKnownIdReplacesTheOldOneInItsPlace) {
    auto first = record(u"first"_s, 1);
    store({first, record(u"second"_s, 1)});
    first.companyName = u"changed"_s;
    store({first});
    EXPECT_EQ(companies(all()), (QStringList{u"second"_s, u"changed"_s}));
}

TEST_F(SessionDatabaseTest, findsNoRecordOfAnUnknownId) {
    store({record(u"a"_s)});
    EXPECT_EQ(opened()->read(QUuid::createUuid()).value(), std::nullopt);
    EXPECT_FALSE(opened()->contains(QUuid::createUuid()).value());
}

TEST_F(SessionDatabaseTest, aStoreWithoutTheOptionalColumnsGetsThem) {
    execute(tableWithoutOptionalColumns);
    const auto records = all();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].durationSecs, 61);
    EXPECT_EQ(records[0].scenario, u"s"_s);
    EXPECT_EQ(records[0].coachingPoints, QStringList{u"p"_s});
    EXPECT_FALSE(records[0].companyName || records[0].calendarEventId || records[0].callId || records[0].outcome ||
                 records[0].feedbackRating || records[0].meddicEvidence || records[0].audienceRaw);
    EXPECT_EQ(records[0].audience(), AudienceType::directSale);
    const auto full = fullRecord();
    store({full});
    EXPECT_EQ(opened()->read(full.id).value(), full);
    EXPECT_EQ(ask("PRAGMA user_version"), "1");
}

TEST_F(SessionDatabaseTest, aStoreThatLacksSomeOptionalColumnsGetsTheRest) {
    execute(std::string{tableWithoutOptionalColumns} +
            "; ALTER TABLE SessionRecord ADD COLUMN companyName TEXT;"
            "UPDATE SessionRecord SET companyName = 'Acme'");
    EXPECT_EQ(companies(all()), QStringList{u"Acme"_s});
}

TEST_F(SessionDatabaseTest, aStoreOfANewerSchemaIsRefusedAndLeftUntouched) {
    store({fullRecord()});
    execute("PRAGMA user_version = 2; ALTER TABLE SessionRecord ADD COLUMN mood TEXT");
    const auto before = bytesOf(path());
    const auto error = refusal();
    EXPECT_EQ(error.kind, StoreError::Kind::newerSchema);
    EXPECT_TRUE(error.errorDescription().contains(u"newer version"_s));
    EXPECT_TRUE(error.errorDescription().contains(u"schema 2"_s));
    EXPECT_EQ(bytesOf(path()), before);
}

TEST_F(SessionDatabaseTest, aNewerStoreWhoseChangesStandInTheLogIsLeftUntouchedToo) {
    make();
    // Killed, so that nobody moves the log's pages into the file.
    runAndKill([this] {
        auto* database = new SQLite::Database{path().toStdString(), SQLite::OPEN_READWRITE};
        database->exec("PRAGMA user_version = 7");
    });
    const auto file = bytesOf(path());
    const auto log = bytesOf(path() + u"-wal"_s);
    ASSERT_FALSE(log.isEmpty());
    EXPECT_EQ(refusal().kind, StoreError::Kind::newerSchema);
    EXPECT_EQ(bytesOf(path()), file);
    EXPECT_EQ(bytesOf(path() + u"-wal"_s), log);
}

TEST_F(SessionDatabaseTest, whatIsNoDatabaseIsDamagedAndNotTouched) {
    makeFolder();
    for (const auto& bytes : {QByteArray{"not a database, though long enough to be looked at"},
                              QByteArray(8192, '\xA5'), QByteArray{"SQLite format 3\0", 16} + QByteArray(4080, 'x')}) {
        writeFile(path(), bytes);
        EXPECT_EQ(refusal().kind, StoreError::Kind::damaged);
        EXPECT_EQ(bytesOf(path()), bytes);
    }
}

TEST_F(SessionDatabaseTest, aFileWhoseSchemaPageIsGarbledIsDamaged) {
    store({fullRecord()});
    auto bytes = bytesOf(path());
    bytes.replace(100, 200, QByteArray(200, '\xFF'));
    writeFile(path(), bytes);
    EXPECT_EQ(refusal().kind, StoreError::Kind::damaged);
}

TEST_F(SessionDatabaseTest, anEmptyFileBecomesAStore) {
    makeFolder();
    writeFile(path(), {});
    store({record(u"a"_s)});
    EXPECT_EQ(companies(all()), QStringList{u"a"_s});
}

TEST_F(SessionDatabaseTest, aTableWithoutRequiredColumnsCountsAsDamaged) {
    execute("CREATE TABLE SessionRecord (id TEXT, createdDate INTEGER)");
    EXPECT_EQ(refusal().kind, StoreError::Kind::damaged);
}

TEST_F(SessionDatabaseTest, aFolderInThePlaceOfTheFileIsAFailure) {
    QDir{}.mkpath(path());
    const auto error = refusal();
    EXPECT_EQ(error.kind, StoreError::Kind::failed);
    EXPECT_FALSE(error.message.isEmpty());
}

TEST_F(SessionDatabaseTest, rowsThatOthersWroteReadAsFarAsTheyCan) {
    make();
    execute(
        "INSERT INTO SessionRecord VALUES ('aaaaaaaa-2222-3333-4444-555555555555', 'soon', 'x', 1.75, 'text', 7,"
        " 'no list', '[1,2]', x'ff', 'true', 5, 6, 7, 8, 'nine', '[', '')");
    const auto records = all();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].createdDate, WallTime{});
    EXPECT_EQ(records[0].durationSecs, 0);
    EXPECT_EQ(records[0].turns, 1);
    EXPECT_EQ(records[0].meddic(), MeddicScore{});
    EXPECT_EQ(records[0].disc(), BuyerDisc{});
    EXPECT_TRUE(records[0].coachingPoints.isEmpty());
    EXPECT_TRUE(records[0].transcript.isEmpty());
    EXPECT_EQ(records[0].companyName, u"5"_s);
    EXPECT_EQ(records[0].feedbackRating, 0);
    EXPECT_EQ(records[0].meddicEvidence, std::nullopt);
    EXPECT_EQ(records[0].audience(), AudienceType::directSale);
    EXPECT_EQ(opened()->readIndex().value().size(), 1U);
}

TEST_F(SessionDatabaseTest, rowsWithoutAReadableIdAreLeftOut) {
    store({record(u"a"_s)});
    for (const auto* id : {"''", "'x'", "5", "'{11111111-2222-3333-4444-555555555555}'",
                           "'11111111-2222-3333-4444-55555555555'", "'00000000-0000-0000-0000-000000000000'"})
        execute(
            "INSERT INTO SessionRecord (id, createdDate, durationSecs, turns, meddicData, discData, coachingPoints,"
            " transcript, wasTrainMode) VALUES (" +
            std::string{id} + ", 0, 0, 0, x'', x'', '[]', '[]', 0)");
    EXPECT_EQ(companies(all()), QStringList{u"a"_s});
    EXPECT_EQ(opened()->readIndex().value().size(), 1U);
}

TEST_F(SessionDatabaseTest, theIndexHoldsWhatTheHistoryShows) {
    const auto full = fullRecord();
    store({full, record(u"later"_s, 60)});
    const auto entries = opened()->readIndex().value();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].entry.companyName, u"later"_s);
    const auto& entry = entries[1].entry;
    const auto expected = indexEntry(full);
    EXPECT_EQ(entry.id, full.id);
    EXPECT_EQ(entry.createdDate, full.createdDate);
    EXPECT_EQ(entry.durationSecs, 3725);
    EXPECT_EQ(entry.meddicScore, 2);
    EXPECT_TRUE(entry.meddicCriteriaMet[0]);
    EXPECT_FALSE(entry.meddicCriteriaMet[1]);
    EXPECT_TRUE(entry.meddicCriteriaMet[5]);
    EXPECT_TRUE(entry.wasTrainMode);
    EXPECT_EQ(entry.audience, AudienceType::coldCall);
    EXPECT_EQ(entry.companyName, full.companyName);
    EXPECT_EQ(entry.turns, full.turns);
    EXPECT_EQ(entry.scenario, full.scenario);
    EXPECT_EQ(expected, entry);
}

TEST_F(SessionDatabaseTest, readingTheIndexNeverTouchesTheTable) {
    make();
    SQLite::Database database{path().toStdString()};
    SQLite::Statement plan{database,
                           "EXPLAIN QUERY PLAN SELECT rowid, id, createdDate, durationSecs, turns, meddicData,"
                           " scenario, wasTrainMode, companyName, audienceRaw"
                           " FROM SessionRecord INDEXED BY SessionRecordHistory"
                           " ORDER BY createdDate DESC, rowid DESC"};
    ASSERT_TRUE(plan.executeStep());
    EXPECT_NE(plan.getColumn(3).getString().find("USING COVERING INDEX SessionRecordHistory"), std::string::npos)
        << plan.getColumn(3).getString();
}

TEST_F(SessionDatabaseTest, aFailedTransactionLeavesNothingBehind) {
    const auto database = opened();
    ASSERT_TRUE(database->write(std::vector{record(u"kept"_s)}).has_value());
    execute(
        "CREATE TRIGGER refuse BEFORE INSERT ON SessionRecord WHEN NEW.companyName = 'bad'"
        " BEGIN SELECT RAISE(ABORT, 'refused'); END");
    const auto written = database->write(std::vector{record(u"good"_s), record(u"bad"_s)});
    ASSERT_FALSE(written.has_value());
    EXPECT_EQ(written.error().kind, StoreError::Kind::failed);
    EXPECT_EQ(database->readAll().value().size(), 1U);
    // And the connection goes on.
    EXPECT_TRUE(database->write(std::vector{record(u"good"_s)}).has_value());
}

TEST_F(SessionDatabaseTest, aStoreWhoseProcessDiedInATransactionOpensWithoutIt) {
    store({record(u"before"_s)});
    runAndKill([this] {
        auto* database = new SQLite::Database{path().toStdString(), SQLite::OPEN_READWRITE};
        // A cache of a few pages makes the open transaction reach the log before it is committed.
        database->exec("PRAGMA cache_size = 5; BEGIN");
        for (int i = 0; i < 500; ++i)
            database->exec(
                "INSERT INTO SessionRecord SELECT lower(hex(randomblob(16))), 1, 1, 1, zeroblob(2000),"
                " x'', '[]', '[]', NULL, 0, 'lost', NULL, NULL, NULL, NULL, NULL, NULL");
    });
    ASSERT_GT(bytesOf(path() + u"-wal"_s).size(), 500'000);
    EXPECT_EQ(companies(all()), QStringList{u"before"_s});
    store({record(u"after"_s, 1)});
    EXPECT_EQ(companies(all()), (QStringList{u"after"_s, u"before"_s}));
    EXPECT_EQ(ask("PRAGMA integrity_check"), "ok");
}

TEST_F(SessionDatabaseTest, whatWasWrittenOutlivesAProcessThatIsKilled) {
    const auto full = fullRecord();
    runAndKill([&] {
        auto* database = opened().release();
        (void)database->write(std::vector{full});
    });
    EXPECT_EQ(all(), std::vector{full});
}

TEST_F(SessionDatabaseTest, tellsWhichCallsItsRecordsAreOf) {
    auto database = SessionDatabase::open(path()).value();
    EXPECT_EQ(database->readCallIds({}).value().records, 0);
    auto second = record(u"b"_s);
    second.callId = u"c-1"_s;
    auto third = record(u"c"_s);
    third.callId = u"C-2"_s;
    auto fourth = record(u"d"_s);
    fourth.callId = u""_s;
    const std::vector records{record(u"a"_s), second, third, fourth, fullRecord()};
    ASSERT_TRUE(database->write(records));
    const auto found = database->readCallIds({u"c-1"_s, u"c-2"_s, u"C-2"_s, u"c-3"_s}).value();
    EXPECT_EQ(found.records, 5);
    EXPECT_EQ(found.callIds, 3);
    EXPECT_EQ(found.known, (QSet{u"c-1"_s, u"C-2"_s}));
    EXPECT_EQ(database->readCallIds({u""_s}).value().known, QSet{u""_s});
}

TEST_F(SessionDatabaseTest, aStoreWithoutAnIndexGetsItAndKeepsItsRecords) {
    const auto full = fullRecord();
    ASSERT_TRUE(SessionDatabase::open(path()).value()->write(std::span{&full, 1}));
    for (const char* index : {"SessionRecordCallIds", "SessionRecordHistory"}) {
        execute(std::string{"DROP INDEX "} + index);
        auto database = SessionDatabase::open(path()).value();
        EXPECT_EQ(database->readCallIds({u"c-1"_s}).value().known, QSet{u"c-1"_s});
        EXPECT_EQ(database->readIndex().value().size(), 1U);
        EXPECT_EQ(database->read(full.id).value(), full);
    }
}

TEST_F(SessionDatabaseTest, theForerunnerOfTheHistorysIndexIsReplaced) {
    const auto full = fullRecord();
    ASSERT_TRUE(SessionDatabase::open(path()).value()->write(std::span{&full, 1}));
    execute("DROP INDEX SessionRecordHistory; CREATE INDEX SessionRecordIndex ON SessionRecord (createdDate, id)");
    EXPECT_EQ(SessionDatabase::open(path()).value()->readIndex().value().front().entry, indexEntry(full));
    EXPECT_EQ(ask("SELECT count(*) FROM sqlite_master WHERE name = 'SessionRecordIndex'"), "0");
}

}  // namespace corvellan
