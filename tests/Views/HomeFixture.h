#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "FakeHandoffWindow.h"
#include "Support/FakeDesktop.h"
#include "Support/SessionFixture.h"
#include "Views/CalendarView.h"
#include "Views/HomeView.h"

namespace corvellan::test {

/// A company as the search finds it.
inline ResolvedCompany nordwind() {
    return {.source = QStringLiteral("CRM"),
            .id = {QStringLiteral("42")},
            .name = QStringLiteral("Nordwind Logistics GmbH"),
            .confidence = 0.98,
            .domain = QStringLiteral("nordwind.example"),
            .country = QStringLiteral("Germany"),
            .crmId = 42,
            .hubspotId = QStringLiteral("hs-42"),
            .orderCount = 17,
            .totalRevenue = 248'000};
}

/// Another one, of which little is known.
inline ResolvedCompany nordlicht() {
    return {.source = QStringLiteral("HubSpot"),
            .id = {QStringLiteral("hs-7")},
            .name = QStringLiteral("Nordlicht Media"),
            .confidence = 0.61};
}

/// Home and calendar over a session of fakes, with a token and a manual clock.
class HomeFixture {
public:
    HomeFixture() { session.auth->accessToken = QStringLiteral("token"); }

    HomeView& home() {
        if (!m_home)
            m_home = std::make_unique<HomeView>(parts());
        return *m_home;
    }
    CalendarView& calendar() {
        if (!m_calendar)
            m_calendar = std::make_unique<CalendarView>(session.session(), home());
        return *m_calendar;
    }
    [[nodiscard]] HomeView::Parts parts() {
        return {.session = session.session(),
                .briefings = session.briefings,
                .handoffWindowController = handoffWindow,
                .clock = session.clock,
                .browser = desktop.browser,
                .dates = {.locale = "de_DE", .zone = QStringLiteral("Europe/Berlin")}};
    }
    void forgetHome() {
        m_calendar.reset();
        m_home.reset();
    }

    /// The search knows these, whatever is asked.
    void know(std::vector<ResolvedCompany> companies) {
        session.briefings.onSearch = [companies](const QString&) { return companies; };
    }
    /// Types, and waits until the answer is there.
    void search(const QString& text) {
        home().setQuickStartCompany(text);
        settleAfter(session.clock, std::chrono::milliseconds{400});
        settle();
    }
    /// What the server is told when a call has come to it.
    [[nodiscard]] StartSessionPayload started() {
        settle();
        for (const ClientMsg& message : session.ws->sent)
            if (const auto* start = std::get_if<StartSessionPayload>(&message.value))
                return *start;
        ADD_FAILURE() << "no call was started";
        return {};
    }
    void giveStore(FakeStore& store) {
        session.session().setModelContext(&store);
        settle();
    }
    [[nodiscard]] FakeBriefings& briefings() { return session.briefings; }

    SessionFixture session;
    FakeHandoffWindow handoffWindow;
    FakeDesktop desktop;

private:
    std::unique_ptr<HomeView> m_home;
    std::unique_ptr<CalendarView> m_calendar;
};

/// A meeting at ten o'clock in Berlin.
inline CalendarMeeting meetingNamed(const QString& id, const QString& summary) {
    return {.id = id,
            .summary = summary,
            .start = QStringLiteral("2026-03-02T09:00:00Z"),
            .end = QStringLiteral("2026-03-02T09:30:00Z")};
}

}  // namespace corvellan::test
