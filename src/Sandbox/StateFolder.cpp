#include "StateFolder.h"

#include <algorithm>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <vector>

#include "EventLog.h"
#include "StateFiles.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

const QString accountsName = u"accounts.json"_s;
const QString sensorName = u"extension.json"_s;
const QString callsFolder = u"calls"_s;

constexpr auto ownerAlone = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

QString callName(const QString& callId) {
    return callsFolder + u'/' + callId + u".json"_s;
}

}  // namespace

StateFolder::StateFolder(QString path, const EventLog& log)
    : m_path(std::move(path)),
      m_log(log),
      m_lock(m_path + u"/lock"_s) {
    // A process that has gone leaves its lock behind; only that one may be broken.
    m_lock.setStaleLockTime(0);
}

std::expected<std::unique_ptr<StateFolder>, Error> StateFolder::open(const QString& path, const EventLog& log) {
    const auto failed = [](const QString& why) { return std::unexpected(Error{TransportError{why}}); };
    const QString whole = QDir{path}.absolutePath();
    for (const auto& folder : {whole, whole + u'/' + callsFolder}) {
        if (QFileInfo{folder}.isDir())
            continue;  // Somebody else's folder keeps its mode; each file in it is closed to others anyhow.
        if (!QDir{}.mkpath(folder) || !QFile::setPermissions(folder, ownerAlone | QFileDevice::ExeOwner))
            return failed(u"Cannot make the folder %1 for the state"_s.arg(folder));
    }
    std::unique_ptr<StateFolder> state{new StateFolder{whole, log}};
    if (!state->m_lock.tryLock())
        return failed(state->m_lock.error() == QLockFile::LockFailedError
                          ? u"Another sandbox keeps its state in %1"_s.arg(whole)
                          : u"Cannot write to %1"_s.arg(whole));
    return state;
}

void StateFolder::attach(AccountBook& accounts, CallBook& calls, SensorBook& sensor) {
    if (auto state = read<AccountBook::State>(accountsName, decodeAccounts)) {
        const auto dropped = state->grants.removeIf(
            [&](const auto& entry) { return !accounts.settings().users.contains(entry.value().user); });
        if (dropped > 0)
            note(u"%1 sign-ins of people who are no longer named are dropped"_s.arg(dropped));
        note(u"%1 sign-ins are taken up"_s.arg(state->grants.size()));
        accounts.restore(std::move(*state));
    }
    if (auto state = read<SensorBook::State>(sensorName, decodeSensor))
        sensor.restore(std::move(*state));
    loadCalls(calls);
    accounts.onChanged = [this, &accounts] { write(accountsName, encodeAccounts(accounts.state())); };
    sensor.onChanged = [this, &sensor] { write(sensorName, encodeSensor(sensor.state())); };
    calls.onChanged = [this](const CallRecord& call) { write(callName(call.callId), encodeCall(call)); };
}

void StateFolder::loadCalls(CallBook& calls) const {
    std::vector<CallRecord> found;
    for (const auto& file : QDir{pathOf(callsFolder)}.entryList({u"*.json"_s}, QDir::Files, QDir::Name)) {
        const QString name = callsFolder + u'/' + file;
        auto call = read<CallRecord>(name, decodeCall);
        if (call && callName(call->callId) != name) {
            putAside(name, u"it holds another call"_s);
            continue;
        }
        if (call)
            found.push_back(std::move(*call));
    }
    std::ranges::sort(found, {}, &CallRecord::startedAt);
    for (auto& call : found)
        calls.add(std::move(call));
    if (!found.empty())
        note(u"%1 calls are taken up"_s.arg(found.size()));
}

template <typename State, typename Decode>
std::optional<State> StateFolder::read(const QString& name, Decode decode) const {
    if (!QFileInfo::exists(pathOf(name)))
        return std::nullopt;
    // Opening a pipe would wait for somebody to write to it.
    QFile file{pathOf(name)};
    if (!QFileInfo{file}.isFile() || !file.open(QIODevice::ReadOnly)) {
        putAside(name, u"it cannot be opened"_s);
        return std::nullopt;
    }
    auto state = decode(file.read(longestStateFile + 1));
    if (!state) {
        putAside(name, state.error());
        return std::nullopt;
    }
    return std::move(*state);
}

void StateFolder::putAside(const QString& name, const QString& why) const {
    constexpr int mostNames = 1000;
    for (int i = 1; i < mostNames; ++i) {
        const QString aside = name + (i == 1 ? u".broken"_s : u".broken-%1"_s.arg(i));
        if (!QFile::rename(pathOf(name), pathOf(aside)))
            continue;
        note(u"%1 does not read (%2). It is put aside as %3, the rest is taken up"_s.arg(name, why, aside));
        return;
    }
    note(u"%1 does not read (%2) and cannot be put aside"_s.arg(name, why));
}

void StateFolder::write(const QString& name, const QByteArray& bytes) const {
    QSaveFile file{pathOf(name)};
    // The mode before a byte is in it; by itself it would take over that of the file that it replaces.
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.setPermissions(ownerAlone) &&
                           file.write(bytes) == bytes.size() && file.commit();
    if (!isWritten)
        note(u"cannot write %1: %2"_s.arg(name, file.errorString()));
}

void StateFolder::note(const QString& what) const {
    m_log.event(u"state"_s, what);
}

}  // namespace corvellan::sandbox
