#include "SessionDatabase.h"

#include <sqlite3.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <algorithm>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include "Base/Utf8.h"
#include "SessionSchema.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

// Only a second program on the same file can keep it busy.
constexpr int busyTimeoutMilliseconds = 2000;

StoreError storeError(const SQLite::Exception& exception) {
    constexpr int primaryCode = 0xFF;
    const int code = exception.getErrorCode() & primaryCode;
    const bool isDamage = code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
    return {isDamage ? StoreError::Kind::damaged : StoreError::Kind::failed, QString::fromUtf8(exception.what())};
}

/// Runs `work`; what the library throws becomes an error.
template <typename Work>
auto guarded(Work work) -> std::expected<std::invoke_result_t<Work&>, StoreError> {
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Work&>>) {
            work();
            return {};
        } else {
            return work();
        }
    } catch (const SQLite::Exception& exception) {
        return std::unexpected(storeError(exception));
    } catch (const std::exception& exception) {
        return std::unexpected(StoreError{StoreError::Kind::failed, QString::fromUtf8(exception.what())});
    }
}

// MARK: - Writing a row

std::string idText(QUuid id) {
    return id.toString(QUuid::WithoutBraces).toStdString();
}

/// Binds the parameters of one statement from left to right.
class RowBinder {
public:
    explicit RowBinder(SQLite::Statement& statement) : m_statement(statement) {}

    void add(std::int64_t number) { m_statement.bind(++m_index, number); }
    void add(const std::string& text) { m_statement.bind(++m_index, text); }
    void add(const QString& text) { add(text.toStdString()); }
    void addBytes(const QByteArray& bytes) {
        m_statement.bind(++m_index, bytes.constData(), static_cast<int>(bytes.size()));
    }
    template <typename T>
    void add(const std::optional<T>& value) {
        if (value)
            add(*value);
        else
            m_statement.bind(++m_index);
    }

private:
    SQLite::Statement& m_statement;
    int m_index = 0;
};

void bindRecord(SQLite::Statement& statement, const SessionRecord& record) {
    RowBinder row{statement};
    row.add(idText(record.id));
    row.add(std::int64_t{record.createdDate.time_since_epoch().count()});
    row.add(record.durationSecs);
    row.add(record.turns);
    row.addBytes(record.meddicData);
    row.addBytes(record.discData);
    row.add(encode(record.coachingPoints).toStdString());
    row.add(encode(record.transcript).toStdString());
    row.add(record.scenario);
    row.add(std::int64_t{record.wasTrainMode});
    row.add(record.companyName);
    row.add(record.calendarEventId);
    row.add(record.callId);
    row.add(record.outcome);
    row.add(record.feedbackRating);
    row.add(record.meddicEvidence ? std::optional{encode(*record.meddicEvidence).toStdString()} : std::nullopt);
    row.add(record.audienceRaw);
}

// MARK: - Reading a row

/// Takes the columns of one row from left to right.
class RowReader {
public:
    explicit RowReader(SQLite::Statement& statement) : m_statement(statement) {}

    std::int64_t number() { return next().getInt64(); }
    WallTime date() { return WallTime{std::chrono::milliseconds{number()}}; }
    /// Valid until the statement steps on.
    QByteArrayView view() {
        const auto column = next();
        // The pointer first: asking for it may convert the value and change its size.
        const auto* const data = static_cast<const char*>(column.getBlob());
        return {data, column.getBytes()};
    }
    QByteArray bytes() { return view().toByteArray(); }
    QString text() { return textFromUtf8(view()); }
    std::optional<QByteArrayView> optionalView() {
        if (!m_statement.isColumnNull(m_index))
            return view();
        ++m_index;
        return std::nullopt;
    }
    std::optional<QString> optionalText() {
        const auto view = optionalView();
        return view ? std::optional{textFromUtf8(*view)} : std::nullopt;
    }
    std::optional<std::int64_t> optionalNumber() {
        if (!m_statement.isColumnNull(m_index))
            return number();
        ++m_index;
        return std::nullopt;
    }
    /// Null for anything but the form that `idText` writes, which is the one that ids are looked up by.
    QUuid id() {
        constexpr qsizetype idLength = 36;
        const auto text = view();
        const bool isWritten =
            text.size() == idLength && std::ranges::none_of(text, [](char c) { return c >= 'A' && c <= 'F'; });
        return isWritten ? QUuid::fromString(QLatin1StringView{text}) : QUuid{};
    }
    /// A list that does not decode reads as an empty one.
    QStringList strings() { return decodeStrings(view()).value_or(QStringList{}); }

private:
    SQLite::Column next() { return m_statement.getColumn(m_index++); }

    SQLite::Statement& m_statement;
    int m_index = 0;
};

SessionRecord takeRecord(RowReader& row) {
    SessionRecord record;
    record.id = row.id();
    record.createdDate = row.date();
    record.durationSecs = row.number();
    record.turns = row.number();
    record.meddicData = row.bytes();
    record.discData = row.bytes();
    record.coachingPoints = row.strings();
    record.transcript = row.strings();
    record.scenario = row.optionalText();
    record.wasTrainMode = row.number() != 0;
    record.companyName = row.optionalText();
    record.calendarEventId = row.optionalText();
    record.callId = row.optionalText();
    record.outcome = row.optionalText();
    record.feedbackRating = row.optionalNumber();
    if (const auto evidence = row.optionalView())
        if (auto decoded = decodeOptionalStrings(*evidence))
            record.meddicEvidence = std::move(*decoded);
    record.audienceRaw = row.optionalText();
    return record;
}

/// The bytes as a key for looking up; copies nothing.
QByteArray lookUp(QByteArrayView bytes) {
    return QByteArray::fromRawData(bytes.data(), bytes.size());
}

void setCriteria(SessionIndexEntry& entry, const MeddicScore& score) {
    entry.meddicScore = static_cast<std::int8_t>(score.score());
    std::ranges::copy(score.values(), std::begin(entry.meddicCriteriaMet));
}

}  // namespace

QString StoreError::errorDescription() const {
    switch (kind) {
    case Kind::newerSchema:
        return u"The session store was written by a newer version of this program and is left as it is (%1)"_s.arg(
            message);
    case Kind::damaged: return u"The session store is damaged: "_s + message;
    case Kind::failed: return u"The session store failed: "_s + message;
    }
    Q_UNREACHABLE();
}

SessionDatabase::SessionDatabase(std::unique_ptr<SQLite::Database> database) : m_database(std::move(database)) {}

SessionDatabase::~SessionDatabase() = default;

std::expected<std::unique_ptr<SessionDatabase>, StoreError> SessionDatabase::open(const QString& path) {
    QDir{}.mkpath(QFileInfo{path}.absolutePath());
    std::optional<StoreError> refusal;
    auto opened = guarded([&] {
        auto database = std::make_unique<SQLite::Database>(
            path.toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, busyTimeoutMilliseconds);
        // A refused store stays as it is: closing it must not move the log's pages into the file.
        sqlite3_db_config(database->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        const int version = database->execAndGet("PRAGMA user_version").getInt();
        if (version > schemaVersion) {
            refusal = StoreError{StoreError::Kind::newerSchema, u"schema %1"_s.arg(version)};
            return database;
        }
        const auto state = schemaState(*database, schemaVersion);
        if (state == SchemaState::foreign) {
            refusal = StoreError{StoreError::Kind::damaged, u"its table is not one of session records"_s};
            return database;
        }
        // Calls are nobody else's business. The log beside the file takes its permissions over.
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        database->exec("PRAGMA journal_mode = WAL");
        // A process that dies loses nothing; a power failure may lose the last calls, never the store.
        database->exec("PRAGMA synchronous = NORMAL");
        if (state == SchemaState::incomplete)
            completeSchema(*database, schemaVersion);
        sqlite3_db_config(database->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
        return database;
    });
    if (!opened)
        return std::unexpected(opened.error());
    if (refusal)
        return std::unexpected(*refusal);
    return std::unique_ptr<SessionDatabase>{new SessionDatabase{std::move(*opened)}};
}

std::expected<void, StoreError> SessionDatabase::write(std::span<const SessionRecord> records) {
    return guarded([&] {
        SQLite::Transaction transaction{*m_database};
        SQLite::Statement statement{*m_database, upsertStatement()};
        for (const auto& record : records) {
            bindRecord(statement, record);
            statement.exec();
            statement.reset();
            statement.clearBindings();
        }
        transaction.commit();
    });
}

std::expected<std::vector<StoredRecord>, StoreError> SessionDatabase::readAll() {
    return guarded([&] {
        std::vector<StoredRecord> records;
        SQLite::Statement statement{*m_database, "SELECT rowid, " + sessionColumnList() +
                                                     " FROM SessionRecord ORDER BY createdDate DESC, rowid DESC"};
        while (statement.executeStep()) {
            RowReader row{statement};
            const auto inserted = row.number();
            auto record = takeRecord(row);
            if (!record.id.isNull())
                records.push_back({inserted, std::move(record)});
        }
        return records;
    });
}

std::expected<std::optional<SessionRecord>, StoreError> SessionDatabase::read(QUuid id) {
    return guarded([&]() -> std::optional<SessionRecord> {
        SQLite::Statement statement{*m_database, "SELECT " + sessionColumnList() + " FROM SessionRecord WHERE id = ?"};
        statement.bind(1, idText(id));
        if (!statement.executeStep())
            return std::nullopt;
        RowReader row{statement};
        return takeRecord(row);
    });
}

std::expected<bool, StoreError> SessionDatabase::contains(QUuid id) {
    return guarded([&] {
        SQLite::Statement statement{*m_database, "SELECT 1 FROM SessionRecord WHERE id = ?"};
        statement.bind(1, idText(id));
        return statement.executeStep();
    });
}

std::expected<SessionStoreProtocol::CallIds, StoreError> SessionDatabase::readCallIds(const QSet<QString>& asked) {
    return guarded([&] {
        // Compared as bytes: of a hundred thousand ids only those asked for become texts.
        QHash<QByteArray, QString> sought;
        for (const auto& callId : asked)
            sought.insert(callId.toUtf8(), callId);
        SessionStoreProtocol::CallIds found;
        QByteArray last;
        SQLite::Statement statement{*m_database,
                                    "SELECT callId FROM SessionRecord INDEXED BY SessionRecordCallIds ORDER BY callId"};
        while (statement.executeStep()) {
            ++found.records;
            RowReader row{statement};
            const auto callId = row.optionalView();
            if (!callId || (found.callIds > 0 && *callId == last))
                continue;
            ++found.callIds;
            last = callId->toByteArray();
            if (const auto match = sought.constFind(last); match != sought.constEnd())
                found.known.insert(*match);
        }
        return found;
    });
}

std::expected<std::vector<StoredIndexEntry>, StoreError> SessionDatabase::readIndex() {
    return guarded([&] {
        std::vector<StoredIndexEntry> entries;
        // A score has 64 forms and a seller a few hundred companies and scenarios: each is decoded and kept once.
        QHash<QByteArray, MeddicScore> scores;
        QHash<QByteArray, QString> texts;
        const auto kept = [&texts](QByteArrayView bytes) {
            auto text = texts.constFind(lookUp(bytes));
            if (text == texts.constEnd())
                text = texts.insert(bytes.toByteArray(), textFromUtf8(bytes));
            return *text;
        };
        SQLite::Statement statement{
            *m_database,
            "SELECT rowid, id, createdDate, durationSecs, turns, meddicData, scenario, wasTrainMode, companyName,"
            " audienceRaw FROM SessionRecord INDEXED BY SessionRecordHistory ORDER BY createdDate DESC, rowid DESC"};
        while (statement.executeStep()) {
            RowReader row{statement};
            StoredIndexEntry stored{.inserted = row.number()};
            auto& entry = stored.entry;
            entry.id = row.id();
            entry.createdDate = row.date();
            entry.durationSecs = row.number();
            entry.turns = row.number();
            const auto meddicData = row.view();
            auto score = scores.constFind(lookUp(meddicData));
            if (score == scores.constEnd())
                score = scores.insert(meddicData.toByteArray(), decodeMeddicScore(meddicData).value_or(MeddicScore{}));
            setCriteria(entry, *score);
            if (const auto scenario = row.optionalView())
                entry.scenario = kept(*scenario);
            entry.wasTrainMode = row.number() != 0;
            if (const auto company = row.optionalView())
                entry.companyName = kept(*company);
            if (const auto audience = row.optionalView())
                entry.audience = audienceType({audience->data(), static_cast<std::size_t>(audience->size())})
                                     .value_or(AudienceType::directSale);
            if (!entry.id.isNull())
                entries.push_back(std::move(stored));
        }
        return entries;
    });
}

SessionIndexEntry indexEntry(const SessionRecord& record) {
    SessionIndexEntry entry;
    entry.id = record.id;
    entry.createdDate = record.createdDate;
    entry.durationSecs = record.durationSecs;
    entry.turns = record.turns;
    setCriteria(entry, record.meddic());
    entry.wasTrainMode = record.wasTrainMode;
    entry.audience = record.audience();
    entry.companyName = record.companyName;
    entry.scenario = record.scenario;
    return entry;
}

}  // namespace corvellan
