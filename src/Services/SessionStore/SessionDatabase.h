#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <QUuid>
#include <span>
#include <vector>

#include "Services/Protocols/SessionStoreProtocol.h"
#include "StoreError.h"

namespace SQLite {
class Database;
}

namespace corvellan {

/// A place in the order of insertion. Among records of one date, the highest comes first.
using InsertionNumber = std::int64_t;

struct StoredRecord {
    InsertionNumber inserted = 0;
    SessionRecord record;
};

struct StoredIndexEntry {
    InsertionNumber inserted = 0;
    SessionIndexEntry entry;
};

/// The store's file: an SQLite database with one table, `SessionRecord`. Its columns bear the names
/// of the record's members, in their order:
/// - `id`: text, the UUID in lower case without braces;
/// - `createdDate`: integer, milliseconds since 1970 in UTC;
/// - `meddicData`, `discData`: bytes, JSON under the protocol's keys;
/// - `coachingPoints`, `transcript`, `meddicEvidence`: text, a JSON array;
/// - the others: integers and text, NULL when absent.
///
/// `PRAGMA user_version` tells the schema. One thread at a time; every operation blocks.
class SessionDatabase {
public:
    static constexpr int schemaVersion = 1;

    /// Opens the file, makes it when there is none, and adds the optional columns that an older
    /// version did not have. A store of a newer schema and a damaged one are not touched.
    [[nodiscard]] static std::expected<std::unique_ptr<SessionDatabase>, StoreError> open(const QString& path);

    ~SessionDatabase();
    SessionDatabase(const SessionDatabase&) = delete;
    SessionDatabase& operator=(const SessionDatabase&) = delete;

    /// Adds the records, or replaces those of the same id, in one transaction.
    [[nodiscard]] std::expected<void, StoreError> write(std::span<const SessionRecord> records);

    /// Newest first. A row without a readable id is left out, since nothing could name it.
    [[nodiscard]] std::expected<std::vector<StoredRecord>, StoreError> readAll();
    [[nodiscard]] std::expected<std::optional<SessionRecord>, StoreError> read(QUuid id);
    [[nodiscard]] std::expected<bool, StoreError> contains(QUuid id);
    /// Reads an index of the database alone.
    [[nodiscard]] std::expected<SessionStoreProtocol::CallIds, StoreError> readCallIds(const QSet<QString>& asked);
    /// Newest first. Reads an index of the database that holds the few columns it needs, and never
    /// the transcripts.
    [[nodiscard]] std::expected<std::vector<StoredIndexEntry>, StoreError> readIndex();

private:
    explicit SessionDatabase(std::unique_ptr<SQLite::Database> database);

    std::unique_ptr<SQLite::Database> m_database;
};

/// What the index holds of a record.
[[nodiscard]] SessionIndexEntry indexEntry(const SessionRecord& record);

}  // namespace corvellan
