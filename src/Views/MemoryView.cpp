#include "MemoryView.h"

#include <chrono>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include "Base/Text.h"
#include "Models/MemoryStore.h"

namespace corvellan {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto pauseBeforeSave = 500ms;
constexpr auto badgeTime = 2s;
/// From here on the counter warns.
constexpr qsizetype roomyLength = 1800;

/// It stands there and can't be shown.
bool isUnreadable(const QString& file) {
    return !MemoryStore::read(file) && QFileInfo::exists(file);
}

}  // namespace

MemoryView::MemoryView(Clock& clock, QString file, QObject* parent)
    : QObject(parent),
      m_clock(clock),
      m_file(std::move(file)) {}

MemoryView::~MemoryView() {
    m_saveTask.cancel();
    m_badges.request_stop();
}

void MemoryView::setMemory(const QString& memory) {
    if (m_memory == memory)
        return;
    m_isEdited = true;
    change(memory);
    if (text::count(memory) > MemoryStore::noteLimit)
        change(text::prefix(memory, MemoryStore::noteLimit));
}

QString MemoryView::counterText() const {
    return u"%1/%2"_s.arg(text::count(m_memory)).arg(MemoryStore::noteLimit);
}

QString MemoryView::counterColor() const {
    return text::count(m_memory) > roomyLength ? u"orange"_s : u"gray"_s;
}

QString MemoryView::notice() const {
    return m_isFileKept
               ? u"The file can't be shown: it is no plain text, larger than 1 MB, or not yours to read. It stays "
                 "as it is, and no note is sent, until you press Save: then what you have written here "
                 "replaces it."_s
               : QString{};
}

QString MemoryView::fileText() {
    return u"~/.config/corvellan/memory.md"_s;
}

void MemoryView::appear() {
    // An edit that the last screen was left with too soon would be taken back by what the file holds.
    if (m_isSavePending && maySaveUnasked())
        save();
    m_saveTask.clear();
    m_isSavePending = false;
    m_isEdited = false;
    m_badges.request_stop();
    m_badges = {};
    setSaved(false);
    m_memory.clear();
    load();
    Q_EMIT memoryChanged();
}

void MemoryView::pressSave() {
    setIsFileKept(false);
    save();
    showSavedBadge();
}

void MemoryView::load() {
    // Nothing is cut here: a file that was made elsewhere shows whole until somebody edits it.
    const auto memory = MemoryStore::read(m_file);
    setIsFileKept(!memory && QFileInfo::exists(m_file));
    if (memory && *memory != m_memory)
        change(*memory);
}

void MemoryView::debounceSave() {
    setSaved(false);
    if (m_isFileKept)
        return;
    m_isSavePending = true;
    m_saveTask = CancellableTask::start([this, &clock = m_clock](std::stop_token stop) -> QCoro::Task<void> {
        if (co_await sleep(clock, pauseBeforeSave, stop) == SleepEnd::interrupted)
            co_return;
        m_isSavePending = false;
        if (!maySaveUnasked())
            co_return;
        save();
        showSavedBadge();
    });
}

void MemoryView::showSavedBadge() {
    setSaved(true);
    // A badge that comes on before this one's time is over goes off with it.
    static_cast<void>(CancellableTask::start(
        [this, &clock = m_clock, stop = m_badges.get_token()](std::stop_token) -> QCoro::Task<void> {
            if (co_await sleep(clock, badgeTime, stop) == SleepEnd::elapsed)
                setSaved(false);
        }));
}

void MemoryView::save() const {
    QDir{}.mkpath(QFileInfo{m_file}.path());
    QSaveFile file{m_file};
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(m_memory.toUtf8());
    file.commit();
}

bool MemoryView::maySaveUnasked() {
    if (!isUnreadable(m_file))
        return true;
    setIsFileKept(true);
    // What the user has written stays; what the file held is no longer true.
    if (!m_isEdited) {
        m_memory.clear();
        Q_EMIT memoryChanged();
    }
    return false;
}

void MemoryView::change(const QString& memory) {
    m_memory = memory;
    Q_EMIT memoryChanged();
    debounceSave();
}

void MemoryView::setSaved(bool saved) {
    if (m_saved == saved)
        return;
    m_saved = saved;
    Q_EMIT savedChanged();
}

void MemoryView::setIsFileKept(bool isKept) {
    if (m_isFileKept == isKept)
        return;
    m_isFileKept = isKept;
    Q_EMIT noticeChanged();
}

}  // namespace corvellan
