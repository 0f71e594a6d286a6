#include "LastSession.h"

#include <QPointer>

#include "BriefText.h"
#include "Models/SessionRecord.h"
#include "RecordScore.h"
#include "Theme.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

LastSession::LastSession(SessionViewModel& session, DateStyle dates, QObject* parent)
    : QObject(parent),
      m_session(session),
      m_dates(std::move(dates)) {
    connect(&session, &SessionViewModel::modelContextChanged, this, &LastSession::watchRecords);
    watchRecords();
}

void LastSession::watchRecords() {
    m_recordWatch.reset();
    follow({});
    if (SessionStoreProtocol* const store = m_session.modelContext())
        m_recordWatch = store->observe([self = QPointer{this}](const SessionStoreProtocol::Index& index) {
            if (self)
                self->follow(index);
        });
}

void LastSession::follow(const SessionStoreProtocol::Index& index) {
    if (index && !index->empty())
        m_entry = index->front();
    else
        m_entry.reset();
    Q_EMIT changed();
}

QString LastSession::score() const {
    if (!m_entry || m_entry->audience == AudienceType::coldCall)
        return {};
    return u"%1/%2"_s.arg(m_entry->meddicScore).arg(meddicCriteria);
}

QString LastSession::scoreColor() const {
    return colorName(m_entry ? recordScoreTint(m_entry->meddicScore).role : ColorRole::gray);
}

double LastSession::scoreOpacity() const {
    return m_entry ? recordScoreTint(m_entry->meddicScore).opacity : 1;
}

QString LastSession::title() const {
    return m_entry ? m_entry->companyName.value_or(m_entry->scenario.value_or(u"Session"_s)) : QString{};
}

bool LastSession::wasTraining() const {
    return m_entry && m_entry->wasTrainMode;
}

QString LastSession::caption() const {
    if (!m_entry)
        return {};
    return mediumDate(m_entry->createdDate, m_dates) + u" · "_s + formattedDuration(m_entry->durationSecs);
}

QString LastSession::spoken() const {
    return brief::joined({score(), wasTraining() ? u"Training"_s : QString{}, caption()}, u", "_s);
}

}  // namespace corvellan
