#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <QCoroTask>
#include <QSet>
#include <vector>

#include "Base/Error.h"
#include "Models/SessionRecord.h"

namespace corvellan {

/// What the history keeps of every record in memory; the rest is loaded when a record is opened.
struct SessionIndexEntry {
    QUuid id;
    WallTime createdDate{};
    std::int64_t durationSecs = 0;
    std::int64_t turns = 0;
    std::int8_t meddicScore = 0;
    bool meddicCriteriaMet[meddicCriteria] = {};
    bool wasTrainMode = false;
    AudienceType audience = AudienceType::directSale;
    std::optional<QString> companyName;
    std::optional<QString> scenario;

    bool operator==(const SessionIndexEntry&) const = default;
};

/// The record store. Callable from any thread that has an executor; work runs on the store's own
/// executor and resumes the caller on the caller's. Changes are kept until `save` makes them durable.
class SessionStoreProtocol {
public:
    virtual ~SessionStoreProtocol() = default;

    /// Adds a record. It is seen by `fetchAll`, `fetch` and the live query at once.
    virtual QCoro::Task<void> insert(SessionRecord record) = 0;
    /// Replaces the record of the same id; nothing happens when there is none.
    virtual QCoro::Task<void> update(SessionRecord record) = 0;
    /// As `insert` for each, in order; the live query hears of them once.
    virtual QCoro::Task<void> insertAll(std::vector<SessionRecord> records) = 0;
    /// Changes one record as it stands then, so that two changes never undo each other; nothing happens when
    /// there is none of that id. `edit` runs on the store's executor and keeps the id.
    virtual QCoro::Task<void> change(QUuid id, std::function<void(SessionRecord&)> edit) = 0;
    /// Makes everything since the last save durable, in one transaction. After a failure the changes
    /// are kept, and the next save tries them again.
    virtual QCoro::Task<std::expected<void, Error>> save() = 0;
    /// Every record, newest first.
    virtual QCoro::Task<std::expected<std::vector<SessionRecord>, Error>> fetchAll() = 0;
    /// One record; empty when there is none of that id.
    virtual QCoro::Task<std::expected<std::optional<SessionRecord>, Error>> fetch(QUuid id) = 0;

    /// Which of the server's calls the records are of.
    struct CallIds {
        qsizetype records = 0;  ///< All records, also those of no such call.
        qsizetype callIds = 0;  ///< Different calls among them.
        QSet<QString> known;    ///< Those of the calls asked for that there is a record of.
    };
    /// The records themselves are not read.
    virtual QCoro::Task<std::expected<CallIds, Error>> fetchCallIds(QSet<QString> asked) = 0;

    /// An immutable picture of the index, newest first.
    using Index = std::shared_ptr<const std::vector<SessionIndexEntry>>;

    /// The live query: `changed` is called with the present index as soon as it has been read, and
    /// again after every change, on the executor of the thread that called this. It ends when the
    /// returned handle goes.
    [[nodiscard]] virtual std::shared_ptr<void> observe(std::function<void(Index)> changed) = 0;
};

}  // namespace corvellan
