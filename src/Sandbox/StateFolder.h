#pragma once

#include <expected>
#include <memory>
#include <QByteArray>
#include <QLockFile>
#include <QString>

#include "Base/Error.h"

namespace corvellan::sandbox {

class AccountBook;
class CallBook;
class EventLog;
class SensorBook;
struct CallRecord;

/// The folder in which the sandbox's state outlives it: one file for the sign-ins, one for the browser extension,
/// one for each call that is over. Whole files take the place of old ones at once, for their owner alone. One
/// thread.
class StateFolder {
public:
    /// Makes the folder where there is none, and keeps it for this process. The log must outlive the folder.
    [[nodiscard]] static std::expected<std::unique_ptr<StateFolder>, Error> open(const QString& path,
                                                                                 const EventLog& log);

    /// Takes up where the last run left, and from now on writes every change before anybody is answered. A file
    /// that does not read is put aside under another name, and the log says so; all else is taken up all the same.
    /// The books must outlive the folder, or its last call.
    void attach(AccountBook& accounts, CallBook& calls, SensorBook& sensor);

private:
    StateFolder(QString path, const EventLog& log);

    template <typename State, typename Decode>
    [[nodiscard]] std::optional<State> read(const QString& name, Decode decode) const;
    void write(const QString& name, const QByteArray& bytes) const;
    void putAside(const QString& name, const QString& why) const;
    void loadCalls(CallBook& calls) const;
    [[nodiscard]] QString pathOf(const QString& name) const { return m_path + u'/' + name; }
    void note(const QString& what) const;

    QString m_path;
    const EventLog& m_log;
    QLockFile m_lock;
};

}  // namespace corvellan::sandbox
