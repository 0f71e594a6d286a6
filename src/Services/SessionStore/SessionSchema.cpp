#include "SessionSchema.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <set>

namespace corvellan {

namespace {

// Everything that the history keeps in memory: the transcripts, which make up the bulk of a store,
// stand before some of these columns in a row, and would have to be read on the way to them.
constexpr const char* createIndex =
    "CREATE INDEX IF NOT EXISTS SessionRecordHistory ON SessionRecord"
    " (createdDate, id, durationSecs, turns, meddicData, scenario, wasTrainMode, companyName, audienceRaw)";
// Its forerunner lacks some of the columns.
constexpr const char* dropOldIndex = "DROP INDEX IF EXISTS SessionRecordIndex";

// Stands behind the transcripts in a row, too.
constexpr const char* createCallIdIndex = "CREATE INDEX IF NOT EXISTS SessionRecordCallIds ON SessionRecord (callId)";

std::string definition(const SchemaColumn& column) {
    const std::string text = std::string{column.name} + ' ' + column.type;
    return column.presence == Presence::required ? text + " NOT NULL" : text;
}

std::set<std::string> presentColumns(SQLite::Database& database) {
    std::set<std::string> names;
    SQLite::Statement statement{database, "SELECT name FROM pragma_table_info('SessionRecord')"};
    while (statement.executeStep())
        names.insert(statement.getColumn(0).getString());
    return names;
}

}  // namespace

std::string sessionColumnList() {
    std::string list;
    for (const auto& column : sessionColumns)
        list += (list.empty() ? "" : ", ") + std::string{column.name};
    return list;
}

std::string upsertStatement() {
    std::string parameters;
    std::string changes;
    for (const auto& column : sessionColumns) {
        parameters += parameters.empty() ? "?" : ", ?";
        const std::string name{column.name};
        changes += (changes.empty() ? "" : ", ") + name + " = excluded." + name;
    }
    return "INSERT INTO SessionRecord (" + sessionColumnList() + ") VALUES (" + parameters +
           ") ON CONFLICT (id) DO UPDATE SET " + changes;
}

SchemaState schemaState(SQLite::Database& database, int version) {
    const auto present = presentColumns(database);
    if (present.empty())
        return SchemaState::incomplete;
    bool isComplete = true;
    for (const auto& column : sessionColumns) {
        if (present.contains(column.name))
            continue;
        if (column.presence == Presence::required)
            return SchemaState::foreign;
        isComplete = false;
    }
    SQLite::Statement indexes{database,
                              "SELECT count(*) FROM sqlite_master WHERE type = 'index' AND name IN"
                              " ('SessionRecordHistory', 'SessionRecordCallIds')"};
    constexpr int indexCount = 2;
    const bool hasIndexes = indexes.executeStep() && indexes.getColumn(0).getInt() == indexCount;
    isComplete = isComplete && hasIndexes && database.execAndGet("PRAGMA user_version").getInt() == version;
    return isComplete ? SchemaState::complete : SchemaState::incomplete;
}

void completeSchema(SQLite::Database& database, int version) {
    SQLite::Transaction transaction{database};
    const auto present = presentColumns(database);
    if (present.empty()) {
        std::string definitions;
        for (const auto& column : sessionColumns)
            definitions += definition(column) + ", ";
        database.exec("CREATE TABLE SessionRecord (" + definitions + "UNIQUE (id))");
    }
    for (const auto& column : sessionColumns)
        if (!present.empty() && !present.contains(column.name))
            database.exec("ALTER TABLE SessionRecord ADD COLUMN " + definition(column));
    database.exec(dropOldIndex);
    database.exec(createIndex);
    database.exec(createCallIdIndex);
    database.exec("PRAGMA user_version = " + std::to_string(version));
    transaction.commit();
}

}  // namespace corvellan
