#include "SqliteSessionStore.h"

#include <algorithm>
#include <QHash>
#include <QStandardPaths>

#include "Base/Log.h"
#include "DamagedStore.h"
#include "SessionDatabase.h"
#include "SessionIndex.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

const Logger logger{"SessionStore"};

using OpenedDatabase = std::expected<std::unique_ptr<SessionDatabase>, StoreError>;

/// Puts the damaged file out of the way and opens a new one in its place.
OpenedDatabase replaceDamaged(const QString& path, const Clock& clock, const StoreError& damage) {
    const auto kept = setAside(path, clock.wallNow());
    if (!kept) {
        logger.error(u"%1; it could not be set aside"_s.arg(damage.errorDescription()));
        return std::unexpected(damage);
    }
    logger.error(u"%1; it was set aside as %2 and a new one is used"_s.arg(damage.errorDescription(), *kept));
    return SessionDatabase::open(path);
}

OpenedDatabase openOrReplace(const QString& path, const Clock& clock) {
    auto opened = SessionDatabase::open(path);
    if (!opened && opened.error().kind == StoreError::Kind::damaged)
        return replaceDamaged(path, clock, opened.error());
    return opened;
}

struct Observer {
    std::function<void(SessionStoreProtocol::Index)> changed;
};

}  // namespace

/// The store's state. Everything runs on the store's executor; work under way keeps it alive.
class SqliteSessionStore::Core {
public:
    Core(std::unique_ptr<SessionDatabase> database, QString path, const Clock& clock)
        : m_database(std::move(database)),
          m_path(std::move(path)),
          m_clock(clock) {}

    void close() { m_database.reset(); }

    void loadIndex() {
        if (!m_database)
            return;
        auto entries = m_database->readIndex();
        if (!entries && entries.error().kind == StoreError::Kind::damaged) {
            m_database.reset();
            auto replaced = replaceDamaged(m_path, m_clock, entries.error());
            if (replaced)
                m_database = std::move(*replaced);
        } else if (!entries) {
            logger.error(u"The index could not be read: %1"_s.arg(entries.error().errorDescription()));
        }
        m_index.assign(entries ? std::move(*entries) : std::vector<StoredIndexEntry>{});
        for (const auto& pending : m_pending)
            m_index.put({pending.inserted, indexEntry(pending.record)});
        m_isIndexLoaded = true;
        publish();
    }

    void insert(SessionRecord record) { put(std::move(record)); }

    void update(SessionRecord record) {
        if (isKnown(record.id))
            put(std::move(record));
    }

    void insertAll(std::vector<SessionRecord> records) {
        std::vector<StoredIndexEntry> entries;
        entries.reserve(records.size());
        for (auto& record : records) {
            const auto& pending = keep(std::move(record));
            entries.push_back({pending.inserted, indexEntry(pending.record)});
        }
        if (m_isIndexLoaded) {
            m_index.putAll(std::move(entries));
            publish();
        }
    }

    void change(QUuid id, const std::function<void(SessionRecord&)>& edit) {
        auto found = fetch(id);
        if (!found || !*found)
            return;
        edit(**found);
        put(std::move(**found));
    }

    std::expected<CallIds, Error> fetchCallIds(const QSet<QString>& asked) {
        if (!m_database)
            return std::unexpected(noStore());
        QSet<QString> unsaved;
        qsizetype added = 0;
        for (const auto& pending : m_pending) {
            if (pending.record.callId)
                unsaved.insert(*pending.record.callId);
            if (!m_database->contains(pending.record.id).value_or(false))
                ++added;
        }
        auto found = m_database->readCallIds(asked + unsaved);
        if (!found)
            return std::unexpected(found.error());
        return CallIds{.records = found->records + added,
                       .callIds = found->callIds + (unsaved - found->known).size(),
                       .known = (found->known + unsaved) & asked};
    }

    std::expected<void, Error> save() {
        if (m_pending.empty())
            return {};
        if (!m_database)
            return std::unexpected(noStore());
        std::vector<SessionRecord> records;
        records.reserve(m_pending.size());
        for (const auto& pending : m_pending)
            records.push_back(pending.record);
        if (const auto written = m_database->write(records); !written)
            return std::unexpected(written.error());
        m_pending.clear();
        m_pendingPlaces.clear();
        return {};
    }

    std::expected<std::vector<SessionRecord>, Error> fetchAll() {
        if (!m_database)
            return std::unexpected(noStore());
        auto stored = m_database->readAll();
        if (!stored)
            return std::unexpected(stored.error());
        overlayPending(*stored);
        std::vector<SessionRecord> records;
        records.reserve(stored->size());
        for (auto& entry : *stored)
            records.push_back(std::move(entry.record));
        return records;
    }

    std::expected<std::optional<SessionRecord>, Error> fetch(QUuid id) {
        if (const auto place = m_pendingPlaces.constFind(id); place != m_pendingPlaces.constEnd())
            return m_pending[*place].record;
        if (!m_database)
            return std::unexpected(noStore());
        auto record = m_database->read(id);
        if (!record)
            return std::unexpected(record.error());
        return std::move(*record);
    }

    void addObserver(std::weak_ptr<Observer> observer, Executor& home) {
        m_observers.push_back({std::move(observer), &home});
        if (m_isIndexLoaded)
            notify(m_observers.back(), m_index.picture());
    }

private:
    struct Registration {
        std::weak_ptr<Observer> observer;
        Executor* home;
    };

    static Error noStore() { return StoreError{StoreError::Kind::failed, u"it is not open"_s}; }

    [[nodiscard]] bool isKnown(QUuid id) {
        return m_pendingPlaces.contains(id) || (m_database && m_database->contains(id).value_or(false));
    }

    void put(SessionRecord record) {
        const auto& pending = keep(std::move(record));
        if (m_isIndexLoaded) {
            m_index.put({pending.inserted, indexEntry(pending.record)});
            publish();
        }
    }

    /// Among the changes until the next save; good until the next change.
    const StoredRecord& keep(SessionRecord record) {
        const auto known = m_pendingPlaces.constFind(record.id);
        const auto place = known == m_pendingPlaces.constEnd() ? m_pending.size() : *known;
        if (place == m_pending.size()) {
            m_pendingPlaces.insert(record.id, place);
            m_pending.push_back({m_nextInsertion++, {}});
        }
        m_pending[place].record = std::move(record);
        return m_pending[place];
    }

    /// Lays the changes that are not saved yet over what the file holds.
    void overlayPending(std::vector<StoredRecord>& stored) const {
        if (m_pending.empty())
            return;
        auto unplaced = m_pendingPlaces;
        for (auto& entry : stored) {
            const auto place = unplaced.constFind(entry.record.id);
            if (place == unplaced.constEnd())
                continue;
            entry.record = m_pending[*place].record;
            unplaced.erase(place);
        }
        for (const auto place : std::as_const(unplaced))
            stored.push_back(m_pending[place]);
        std::ranges::sort(stored, std::greater{}, [](const StoredRecord& entry) {
            return std::pair{entry.record.createdDate, entry.inserted};
        });
    }

    void publish() {
        std::erase_if(m_observers, [](const Registration& registration) { return registration.observer.expired(); });
        for (const auto& registration : m_observers)
            notify(registration, m_index.picture());
    }

    // The observer is locked on its own thread only, so that it also ends there.
    static void notify(const Registration& registration, Index picture) {
        if (registration.observer.expired())
            return;
        registration.home->post([observer = registration.observer, picture = std::move(picture)] {
            if (const auto present = observer.lock())
                present->changed(picture);
        });
    }

    std::unique_ptr<SessionDatabase> m_database;
    QString m_path;
    const Clock& m_clock;

    /// Above every row number of the file.
    InsertionNumber m_nextInsertion = InsertionNumber{1} << 62;
    std::vector<StoredRecord> m_pending;  ///< In the order of insertion.
    QHash<QUuid, std::size_t> m_pendingPlaces;

    SessionIndex m_index;
    bool m_isIndexLoaded = false;
    std::vector<Registration> m_observers;
};

SqliteSessionStore::SqliteSessionStore(Executor& executor, std::shared_ptr<Core> core)
    : m_executor(executor),
      m_core(std::move(core)) {
    m_executor.post([store = m_core] { store->loadIndex(); });
}

SqliteSessionStore::~SqliteSessionStore() {
    runAndWait(m_executor, [this] { m_core->close(); });
}

QString SqliteSessionStore::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/corvellan/sessions.sqlite"_s;
}

QCoro::Task<std::expected<SqliteSessionStore::Opened, Error>> SqliteSessionStore::open(QString path, Executor& executor,
                                                                                       const Clock& clock) {
    struct Attempt {
        OpenedDatabase database;
    };
    auto opening = [path, &clock] { return Attempt{openOrReplace(path, clock)}; };
    auto attempt = co_await executor.call(std::move(opening));
    if (!attempt.database)
        co_return std::unexpected(Error{attempt.database.error()});
    auto core = std::make_shared<Core>(std::move(*attempt.database), path, clock);
    co_return Opened{std::unique_ptr<SqliteSessionStore>{new SqliteSessionStore{executor, std::move(core)}}};
}

QCoro::Task<void> SqliteSessionStore::insert(SessionRecord record) {
    auto work = [core = m_core, record = std::move(record)]() mutable { core->insert(std::move(record)); };
    co_await m_executor.call(std::move(work));
}

QCoro::Task<void> SqliteSessionStore::update(SessionRecord record) {
    auto work = [core = m_core, record = std::move(record)]() mutable { core->update(std::move(record)); };
    co_await m_executor.call(std::move(work));
}

QCoro::Task<void> SqliteSessionStore::insertAll(std::vector<SessionRecord> records) {
    auto work = [core = m_core, records = std::move(records)]() mutable { core->insertAll(std::move(records)); };
    co_await m_executor.call(std::move(work));
}

QCoro::Task<void> SqliteSessionStore::change(QUuid id, std::function<void(SessionRecord&)> edit) {
    auto work = [core = m_core, id, edit = std::move(edit)] { core->change(id, edit); };
    co_await m_executor.call(std::move(work));
}

QCoro::Task<std::expected<SessionStoreProtocol::CallIds, Error>> SqliteSessionStore::fetchCallIds(QSet<QString> asked) {
    auto work = [core = m_core, asked = std::move(asked)] { return core->fetchCallIds(asked); };
    co_return co_await m_executor.call(std::move(work));
}

QCoro::Task<std::expected<void, Error>> SqliteSessionStore::save() {
    auto work = [core = m_core] { return core->save(); };
    co_return co_await m_executor.call(std::move(work));
}

QCoro::Task<std::expected<std::vector<SessionRecord>, Error>> SqliteSessionStore::fetchAll() {
    auto work = [core = m_core] { return core->fetchAll(); };
    co_return co_await m_executor.call(std::move(work));
}

QCoro::Task<std::expected<std::optional<SessionRecord>, Error>> SqliteSessionStore::fetch(QUuid id) {
    auto work = [core = m_core, id] { return core->fetch(id); };
    co_return co_await m_executor.call(std::move(work));
}

std::shared_ptr<void> SqliteSessionStore::observe(std::function<void(Index)> changed) {
    Q_ASSERT(Executor::current());
    auto observer = std::make_shared<Observer>(std::move(changed));
    m_executor.post([core = m_core, observer = std::weak_ptr{observer}, home = Executor::current()] {
        core->addObserver(observer, *home);
    });
    return observer;
}

}  // namespace corvellan
