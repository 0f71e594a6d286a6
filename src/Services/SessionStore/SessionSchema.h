#pragma once

#include <array>
#include <string>

namespace SQLite {
class Database;
}

namespace corvellan {

enum class Presence { required, optional };

struct SchemaColumn {
    const char* name;
    const char* type;
    Presence presence;
};

/// The columns of the table `SessionRecord`, in the order of the record's members. New optional ones
/// go to the end: stores that lack them get them on opening.
inline constexpr std::array sessionColumns{
    SchemaColumn{"id", "TEXT", Presence::required},
    SchemaColumn{"createdDate", "INTEGER", Presence::required},
    SchemaColumn{"durationSecs", "INTEGER", Presence::required},
    SchemaColumn{"turns", "INTEGER", Presence::required},
    SchemaColumn{"meddicData", "BLOB", Presence::required},
    SchemaColumn{"discData", "BLOB", Presence::required},
    SchemaColumn{"coachingPoints", "TEXT", Presence::required},
    SchemaColumn{"transcript", "TEXT", Presence::required},
    SchemaColumn{"scenario", "TEXT", Presence::optional},
    SchemaColumn{"wasTrainMode", "INTEGER", Presence::required},
    SchemaColumn{"companyName", "TEXT", Presence::optional},
    SchemaColumn{"calendarEventId", "TEXT", Presence::optional},
    SchemaColumn{"callId", "TEXT", Presence::optional},
    SchemaColumn{"outcome", "TEXT", Presence::optional},
    SchemaColumn{"feedbackRating", "INTEGER", Presence::optional},
    SchemaColumn{"meddicEvidence", "TEXT", Presence::optional},
    SchemaColumn{"audienceRaw", "TEXT", Presence::optional},
};

/// "id, createdDate, ..."
[[nodiscard]] std::string sessionColumnList();
/// Inserts a row with one parameter a column, or replaces what the row of that id holds.
[[nodiscard]] std::string upsertStatement();

enum class SchemaState {
    complete,
    incomplete,  ///< No table yet, or one without some optional columns.
    foreign,     ///< A table of that name without the required columns.
};

/// Only reads. Throws as SQLiteCpp does.
[[nodiscard]] SchemaState schemaState(SQLite::Database& database, int version);

/// Makes the table or adds the columns it lacks, in one transaction. Throws as SQLiteCpp does.
void completeSchema(SQLite::Database& database, int version);

}  // namespace corvellan
