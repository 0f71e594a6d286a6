#pragma once

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Services/Protocols/SessionStoreProtocol.h"
#include "StoreError.h"

namespace corvellan {

class SessionDatabase;

/// The record store in one SQLite file (see SessionDatabase.h for its table).
///
/// What is inserted stays in memory until `save` writes it in one transaction; a process that dies
/// after `save` loses nothing. The index of the live query is read on the store's executor after
/// `open` has returned. Failures are `StoreError`s.
class SqliteSessionStore final : public SessionStoreProtocol {
public:
    /// "corvellan/sessions.sqlite" below the user's data folder.
    [[nodiscard]] static QString defaultPath();

    /// An open store. Not the bare pointer: a task of an `std::expected` that a null pointer converts
    /// to does not compile, since the comparison inside QCoro 0.8 becomes ambiguous.
    struct Opened {
        std::unique_ptr<SqliteSessionStore> store;
    };

    /// Opens the store, makes it when there is none. A damaged file is set aside under another name,
    /// with a line in the log, and a new store made. A store of a newer schema, and one that cannot be
    /// opened for another reason, are left as they are: the error says why.
    ///
    /// \param executor where all work is done; it outlives the store.
    [[nodiscard]] static QCoro::Task<std::expected<Opened, Error>> open(QString path, Executor& executor,
                                                                        const Clock& clock);

    /// Closes the file; waits for what is under way. Changes that were not saved are gone.
    ~SqliteSessionStore() override;
    SqliteSessionStore(const SqliteSessionStore&) = delete;
    SqliteSessionStore& operator=(const SqliteSessionStore&) = delete;

    /// A record of an id that is known already replaces that one.
    QCoro::Task<void> insert(SessionRecord record) override;
    QCoro::Task<void> update(SessionRecord record) override;
    QCoro::Task<void> insertAll(std::vector<SessionRecord> records) override;
    QCoro::Task<void> change(QUuid id, std::function<void(SessionRecord&)> edit) override;
    QCoro::Task<std::expected<void, Error>> save() override;
    QCoro::Task<std::expected<std::vector<SessionRecord>, Error>> fetchAll() override;
    QCoro::Task<std::expected<std::optional<SessionRecord>, Error>> fetch(QUuid id) override;
    QCoro::Task<std::expected<CallIds, Error>> fetchCallIds(QSet<QString> asked) override;
    [[nodiscard]] std::shared_ptr<void> observe(std::function<void(Index)> changed) override;

private:
    class Core;

    SqliteSessionStore(Executor& executor, std::shared_ptr<Core> core);

    Executor& m_executor;
    std::shared_ptr<Core> m_core;  ///< Used on the executor alone.
};

}  // namespace corvellan
