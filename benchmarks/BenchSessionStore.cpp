#include <benchmark/benchmark.h>

#include <sqlite3.h>
#include <QCoreApplication>
#include <QTemporaryDir>

#include "Base/Executor.h"
#include "Services/SessionStore/SessionDatabase.h"
#include "Services/SessionStore/SessionIndex.h"
#include "Services/SessionStore/SqliteSessionStore.h"
#include "Views/History/DateSections.h"
#include "Views/History/SessionStatistics.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

constexpr int records = 100'000;

SessionRecord recordAt(int number) {
    QStringList transcript;
    for (int line = 0; line < 10; ++line)
        transcript << u"[Mic] Line %1 of call %2, about as long as people speak"_s.arg(line).arg(number);
    return SessionRecord::make({.durationSecs = 60 + number % 3000,
                                .turns = 40,
                                .meddic = {.metrics = number % 2 == 0, .champion = number % 3 == 0},
                                .disc = {DiscType::steady, DiscConfidence::medium, u"asks for time"_s},
                                .coachingPoints = {u"Name the next step"_s},
                                .transcript = transcript,
                                .companyName = u"Company %1"_s.arg(number % 300),
                                .callId = QString::number(number)},
                               WallTime{std::chrono::seconds{1'600'000'000 + number}});
}

/// The main loop and one store of 100,000 records for all benchmarks.
class Ground {
public:
    Ground() {
        auto database = SessionDatabase::open(path()).value();
        std::vector<SessionRecord> batch;
        for (int i = 0; i < records; ++i)
            batch.push_back(recordAt(i));
        if (!database->write(batch))
            throw std::runtime_error("the store could not be filled");
    }

    [[nodiscard]] QString path() const { return m_folder.filePath(u"sessions.sqlite"_s); }
    [[nodiscard]] Executor& storeExecutor() const { return m_thread.executor(); }
    [[nodiscard]] const Clock& clock() const { return m_clock; }

    template <typename Condition>
    static void spinUntil(Condition condition) {
        while (!condition())
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }

    std::unique_ptr<SqliteSessionStore> open() {
        std::unique_ptr<SqliteSessionStore> store;
        const auto opening = keepOpened(store);
        spinUntil([&] { return store != nullptr; });
        return store;
    }

    static Ground& get() {
        static Ground ground;
        return ground;
    }

private:
    QCoro::Task<void> keepOpened(std::unique_ptr<SqliteSessionStore>& store) {
        auto opened = co_await SqliteSessionStore::open(path(), storeExecutor(), m_clock);
        store = std::move(opened.value().store);
    }

    int m_argumentCount = 1;
    char m_name[6] = "bench";
    char* m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments};
    EventLoopExecutor m_main;
    QTemporaryDir m_folder;
    SystemClock m_clock;
    WorkerThread m_thread{"store"};
};

void openFile(benchmark::State& state) {
    auto& ground = Ground::get();
    for (auto _ : state)
        benchmark::DoNotOptimize(SessionDatabase::open(ground.path()).value());
}

void openFileWithSqlite(benchmark::State& state) {
    auto& ground = Ground::get();
    for (auto _ : state) {
        sqlite3* database = nullptr;
        sqlite3_open(ground.path().toUtf8().constData(), &database);
        sqlite3_exec(database, "PRAGMA user_version; SELECT name FROM sqlite_master", nullptr, nullptr, nullptr);
        sqlite3_close(database);
    }
}

void loadIndex(benchmark::State& state) {
    auto database = SessionDatabase::open(Ground::get().path()).value();
    for (auto _ : state) {
        SessionIndex index;
        index.assign(database->readIndex().value());
        if (index.picture()->size() < records)
            state.SkipWithError("the index is not whole");
    }
}

void stepThroughIndexWithSqlite(benchmark::State& state) {
    sqlite3* database = nullptr;
    sqlite3_open(Ground::get().path().toUtf8().constData(), &database);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database,
                       "SELECT rowid, id, createdDate, durationSecs, turns, meddicData, scenario, wasTrainMode,"
                       " companyName, audienceRaw"
                       " FROM SessionRecord INDEXED BY SessionRecordHistory ORDER BY createdDate DESC, rowid DESC",
                       -1, &statement, nullptr);
    for (auto _ : state) {
        int rows = 0;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int column = 0; column < 10; ++column)
                benchmark::DoNotOptimize(sqlite3_column_blob(statement, column));
            ++rows;
        }
        sqlite3_reset(statement);
        if (rows < records)
            state.SkipWithError("the index is not whole");
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
}

/// From the call to open until the screen has the index: what the history waits for.
void openToFirstNotice(benchmark::State& state) {
    auto& ground = Ground::get();
    for (auto _ : state) {
        auto store = ground.open();
        bool hasCome = false;
        const auto handle = store->observe([&](const SessionStoreProtocol::Index&) { hasCome = true; });
        Ground::spinUntil([&] { return hasCome; });
    }
}

/// A call has ended: its record goes in, is durable, and the screens know of it.
void insertSaveAndNotice(benchmark::State& state) {
    auto& ground = Ground::get();
    auto store = ground.open();
    int notices = 0;
    const auto handle = store->observe([&](const SessionStoreProtocol::Index&) { ++notices; });
    Ground::spinUntil([&] { return notices == 1; });
    int number = records;
    for (auto _ : state) {
        bool isSaved = false;
        const auto work = [](SqliteSessionStore& target, SessionRecord record, bool& saved) -> QCoro::Task<void> {
            co_await target.insert(std::move(record));
            saved = (co_await target.save()).has_value();
        }(*store, recordAt(number++), isSaved);
        const int expected = notices;
        Ground::spinUntil([&] { return isSaved && notices > expected; });
    }
}

void insertWithSqlite(benchmark::State& state) {
    sqlite3* database = nullptr;
    sqlite3_open(Ground::get().path().toUtf8().constData(), &database);
    sqlite3_exec(database, "PRAGMA synchronous = NORMAL", nullptr, nullptr, nullptr);
    for (auto _ : state)
        sqlite3_exec(database,
                     "INSERT INTO SessionRecord SELECT lower(hex(randomblob(16))), createdDate, durationSecs, turns,"
                     " meddicData, discData, coachingPoints, transcript, scenario, wasTrainMode, companyName,"
                     " calendarEventId, callId, outcome, feedbackRating, meddicEvidence, audienceRaw"
                     " FROM SessionRecord WHERE rowid = 1",
                     nullptr, nullptr, nullptr);
    sqlite3_close(database);
}

/// As many calls as a history asks its server for.
constexpr int importedCalls = 200;

QCoro::Task<void> importCalls(SqliteSessionStore& target, std::vector<SessionRecord> calls, bool& isSaved) {
    QSet<QString> asked;
    for (const auto& call : calls)
        asked.insert(*call.callId);
    const auto stored = (co_await target.fetchCallIds(std::move(asked))).value();
    std::erase_if(calls, [&stored](const SessionRecord& call) { return stored.known.contains(*call.callId); });
    co_await target.insertAll(std::move(calls));
    isSaved = (co_await target.save()).has_value();
}

/// A history comes from the server: what is known is left out, the rest goes in and is durable, and the
/// screens know of it.
void importHistory(benchmark::State& state) {
    auto& ground = Ground::get();
    auto store = ground.open();
    int notices = 0;
    const auto handle = store->observe([&](const SessionStoreProtocol::Index&) { ++notices; });
    Ground::spinUntil([&] { return notices == 1; });
    int number = records * 10;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<SessionRecord> calls;
        for (int i = 0; i < importedCalls; ++i)
            calls.push_back(recordAt(number++));
        state.ResumeTiming();
        bool isSaved = false;
        const int before = notices;
        const auto work = importCalls(*store, std::move(calls), isSaved);
        Ground::spinUntil([&] { return isSaved && notices > before; });
    }
}

void importWithSqlite(benchmark::State& state) {
    sqlite3* database = nullptr;
    sqlite3_open(Ground::get().path().toUtf8().constData(), &database);
    sqlite3_exec(database, "PRAGMA synchronous = NORMAL", nullptr, nullptr, nullptr);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, "SELECT callId FROM SessionRecord INDEXED BY SessionRecordCallIds", -1, &statement,
                       nullptr);
    for (auto _ : state) {
        while (sqlite3_step(statement) == SQLITE_ROW)
            benchmark::DoNotOptimize(sqlite3_column_blob(statement, 0));
        sqlite3_reset(statement);
        sqlite3_exec(database,
                     "INSERT INTO SessionRecord SELECT lower(hex(randomblob(16))), createdDate, durationSecs, turns,"
                     " meddicData, discData, coachingPoints, transcript, scenario, wasTrainMode, companyName,"
                     " calendarEventId, callId, outcome, feedbackRating, meddicEvidence, audienceRaw"
                     " FROM SessionRecord WHERE rowid <= 200",
                     nullptr, nullptr, nullptr);
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
}

void putIntoIndex(benchmark::State& state) {
    SessionIndex index;
    index.assign(SessionDatabase::open(Ground::get().path()).value()->readIndex().value());
    StoredIndexEntry newest{.inserted = records * 2, .entry = indexEntry(recordAt(records * 2))};
    // Replaced again and again, so that the index does not grow.
    for (auto _ : state)
        index.put(newest);
}

void copyIndex(benchmark::State& state) {
    SessionIndex index;
    index.assign(SessionDatabase::open(Ground::get().path()).value()->readIndex().value());
    for (auto _ : state)
        benchmark::DoNotOptimize(std::vector<SessionIndexEntry>{*index.picture()});
}

constexpr std::int64_t newestDate = 1'600'000'000 + records;
constexpr std::int64_t monthSecs = 30 * 86'400;

/// What a change of the filters costs the history, before anything is drawn.
void filterAndStatistics(benchmark::State& state) {
    SessionIndex index;
    index.assign(SessionDatabase::open(Ground::get().path()).value()->readIndex().value());
    const auto picture = index.picture();
    const CalendarDays days{{"de_DE", u"Europe/Berlin"_s}};
    // Records are a second apart: all of them are of the last 30 days.
    const WallTime now{std::chrono::seconds{newestDate}};
    for (auto _ : state) {
        const auto places = filteredRecords(*picture, FilterMode::live, cutoff(TimeRange::month, now, days));
        if (SessionStatistics::of(*picture, places).sessions < records)
            state.SkipWithError("the filter lost records");
    }
}

void filterAndStatisticsWithSqlite(benchmark::State& state) {
    sqlite3* database = nullptr;
    sqlite3_open(Ground::get().path().toUtf8().constData(), &database);
    sqlite3_stmt* statement = nullptr;
    const auto query =
        u"SELECT count(*), sum(durationSecs), sum(meddicData ->> '$.metrics'), sum(meddicData ->> '$.economic_buyer'),"
        " sum(meddicData ->> '$.decision_criteria'), sum(meddicData ->> '$.decision_process'),"
        " sum(meddicData ->> '$.identify_pain'), sum(meddicData ->> '$.champion')"
        " FROM SessionRecord INDEXED BY SessionRecordHistory WHERE createdDate >= %1 AND wasTrainMode = 0"_s
            .arg((newestDate - monthSecs) * 1000)
            .toUtf8();
    if (sqlite3_prepare_v2(database, query.constData(), -1, &statement, nullptr) != SQLITE_OK)
        state.SkipWithError(sqlite3_errmsg(database));
    for (auto _ : state) {
        if (sqlite3_step(statement) != SQLITE_ROW || sqlite3_column_int64(statement, 0) < records)
            state.SkipWithError("the query lost records");
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
}

/// The records grouped by day, as the list shows them.
void groupByDay(benchmark::State& state) {
    constexpr std::int64_t perDay = 30;
    std::vector<SessionIndexEntry> entries(records);
    const WallTime now{std::chrono::seconds{newestDate}};
    for (std::size_t i = 0; i < entries.size(); ++i)
        entries[i].createdDate = now - std::chrono::seconds{static_cast<std::int64_t>(i) * 86'400 / perDay};
    const CalendarDays days{{"de_DE", u"Europe/Berlin"_s}};
    const auto places = filteredRecords(entries, FilterMode::all, std::nullopt);
    for (auto _ : state)
        benchmark::DoNotOptimize(groupedSections(entries, places, now, days));
}

}  // namespace

BENCHMARK(openFile)->Name("StoreOpen/ours/100000")->Unit(benchmark::kMicrosecond);
BENCHMARK(openFileWithSqlite)->Name("StoreOpen/peer:SQLite alone/100000")->Unit(benchmark::kMicrosecond);
BENCHMARK(loadIndex)->Name("StoreIndexLoad/ours/100000")->Unit(benchmark::kMillisecond);
BENCHMARK(stepThroughIndexWithSqlite)->Name("StoreIndexLoad/peer:SQLite alone/100000")->Unit(benchmark::kMillisecond);
BENCHMARK(openToFirstNotice)->Name("StoreOpenToFirstNotice/ours/100000")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(putIntoIndex)->Name("StoreIndexPut/ours/100000")->Unit(benchmark::kMicrosecond);
BENCHMARK(copyIndex)->Name("StoreIndexPut/peer:copy of the entries/100000")->Unit(benchmark::kMicrosecond);
BENCHMARK(filterAndStatistics)->Name("HistoryFilterAndStatistics/ours/100000")->Unit(benchmark::kMillisecond);
BENCHMARK(filterAndStatisticsWithSqlite)
    ->Name("HistoryFilterAndStatistics/peer:one SQLite query/100000")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(groupByDay)->Name("HistoryGroupByDay/ours/100000")->Unit(benchmark::kMillisecond);
// Last, since they make the store grow; few times, so that it stays about as large.
constexpr int imports = 5;
BENCHMARK(importHistory)
    ->Name("StoreImport200/ours/100000")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(imports);
BENCHMARK(importWithSqlite)
    ->Name("StoreImport200/peer:SQLite alone/100000")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(imports);
BENCHMARK(insertSaveAndNotice)->Name("StoreInsertAndSave/ours/100000")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(insertWithSqlite)
    ->Name("StoreInsertAndSave/peer:SQLite alone/100000")
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

}  // namespace corvellan
