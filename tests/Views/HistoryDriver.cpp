#include "HistoryDriver.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>

#include "History/HistoryRecords.h"
#include "HistoryWorld.h"

namespace corvellan::test {

namespace {

constexpr std::chrono::minutes apart{30};

std::optional<QString> named(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional{text};
}

}  // namespace

struct HistoryDriver::World : HistoryWorld {
    Theme theme;
};

HistoryDriver::HistoryDriver() : m_world(std::make_unique<World>()) {}

HistoryDriver::~HistoryDriver() = default;

QObject* HistoryDriver::history() {
    return &m_world->view();
}

QObject* HistoryDriver::theme() {
    return &m_world->theme;
}

void HistoryDriver::reset() {
    auto old = std::exchange(m_world, std::make_unique<World>());
    Q_EMIT madeAnew();
}

void HistoryDriver::keep(const QString& company, double hoursAgo, const QVariantMap& more) {
    const auto audience = audienceType(more.value(u"audience"_s, u"direct_sale"_s).toString().toStdString());
    auto record = m_world->recordOf({.durationSecs = 192,
                                     .turns = 12,
                                     .meddic = scoreOf(more.value(u"score"_s, 0).toInt()),
                                     .disc = {.discType = DiscType::steady},
                                     .coachingPoints = more.value(u"points"_s).toStringList(),
                                     .transcript = more.value(u"transcript"_s).toStringList(),
                                     .scenario = named(more.value(u"scenario"_s).toString()),
                                     .wasTrainMode = more.value(u"train"_s).toBool(),
                                     .companyName = named(company),
                                     .callId = named(more.value(u"callId"_s).toString()),
                                     .audience = audience.value()},
                                    std::chrono::milliseconds{static_cast<std::int64_t>(hoursAgo * 3'600'000)});
    if (more.contains(u"rating"_s))
        record.feedbackRating = more.value(u"rating"_s).toInt();
    std::vector<std::optional<QString>> evidence;
    for (const QString& quote : more.value(u"evidence"_s).toStringList())
        evidence.push_back(named(quote));
    if (!evidence.empty())
        record.meddicEvidence = evidence;
    m_world->keep(std::move(record));
}

void HistoryDriver::keepMany(int count) {
    std::vector<SessionRecord> records;
    records.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        records.push_back(m_world->recordOf(
            {.durationSecs = 600, .turns = 40, .meddic = scoreOf(i % 7), .companyName = u"Company %1"_s.arg(i)},
            apart * i));
    m_world->keep(std::move(records));
}

void HistoryDriver::endCall(const QString& company) {
    m_world->session().setLastSummary(SummaryPayload{.callId = u"call-"_s + company});
    keep(company, 0, {{u"callId"_s, u"call-"_s + company}});
}

void HistoryDriver::holdSync() {
    m_world->fixture.http.gate.close();
}

void HistoryDriver::releaseSync() {
    m_world->fixture.http.gate.open();
    m_world->quieten();
}

void HistoryDriver::setDark(bool isDark) {
    m_world->theme.setIsDark(isDark);
}

void HistoryDriver::quieten() {
    m_world->quieten();
}

int HistoryDriver::syncsAsked() const {
    m_world->quieten();
    return static_cast<int>(m_world->fixture.http.requests.size());
}

QString HistoryDriver::lastReport() {
    m_world->quieten();
    const auto& requests = m_world->fixture.http.requests;
    return requests.empty() ? QString{} : QString::fromUtf8(requests.back().body);
}

QString HistoryDriver::clipboard() const {
    return QGuiApplication::clipboard()->text();
}

QString HistoryDriver::mailed() const {
    settle();
    const auto& mails = m_world->desktop.browser.mails;
    return mails.empty() ? QString{} : mails.back().first;
}

QVariantMap HistoryDriver::spoken(QObject* item) const {
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(item);
    if (!accessible)
        return {};
    return {{u"name"_s, accessible->text(QAccessible::Name)},
            {u"role"_s, QVariant::fromValue(static_cast<int>(accessible->role()))},
            {u"isChecked"_s, static_cast<bool>(accessible->state().checked)}};
}

bool HistoryDriver::pressThroughAccessibility(QObject* item) {
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(item);
    if (!accessible || !accessible->actionInterface())
        return false;
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    return true;
}

}  // namespace corvellan::test
