#include "ScreenshotStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Arrange = std::function<void(const ScreenshotScene&)>;

/// As large as the window gets between calls.
constexpr QSize largest{760, 700};

ScreenshotState pictured(const QString& name, Arrange arrange, std::optional<QSize> size = std::nullopt) {
    return {.name = name,
            .prepare = [](SessionViewModel&) {},
            .isCall = false,
            .arrange = std::move(arrange),
            .size = size};
}

ScreenshotState light(ScreenshotState state) {
    state.name += u"-light"_s;
    state.isLight = true;
    return state;
}

const QString& note() {
    static const QString text =
        u"## Nordwind Logistics GmbH\n\nRenews in **March**; asks for EU hosting and a fixed price.\n\n"
        "### Contacts\n\n| Name | Role | Mail |\n|---|---|---|\n"
        "| Sandra Weiss | Head of IT | sandra.weiss@nordwind.example |\n"
        "| Tom Becker | Finance | +49 40 123456 78 |\n\n"
        "### Open points\n\n- Three outages last quarter, forty thousand euros each\n"
        "- Open quote of EUR 48,000 since January\n- The board meets in June\n\n"
        "### Next step\n\nA pilot with twenty devices, then the **board**."_s;
    return text;
}

HandoffResponse handoff() {
    return {
        .handoffNote = note(),
        .meta = HandoffMeta{.hubspotCompanyId = u"77"_s, .deviceCount = 240, .callCount = 12, .engagementEmails = 7}};
}

std::vector<ResolvedCompany> companies() {
    return {{.source = u"CRM"_s,
             .id = {u"42"_s},
             .name = u"Nordwind Logistics GmbH"_s,
             .confidence = 0.98,
             .domain = u"nordwind.example"_s,
             .country = u"Germany"_s,
             .crmId = 42,
             .hubspotId = u"hs-42"_s,
             .orderCount = 17,
             .totalRevenue = 248'000},
            {.source = u"HubSpot"_s, .id = {u"hs-7"_s}, .name = u"Nordlicht Media"_s, .confidence = 0.61},
            {.source = u"CRM"_s,
             .id = {u"9"_s},
             .name = u"The Extraordinarily Long-Named Holding Company of Northern Europe and Far Beyond"_s,
             .confidence = 0.5,
             .domain = u"long-named-holding-company.example"_s,
             .orderCount = 1,
             .totalRevenue = 2'500'000}};
}

SalesBrief brief() {
    return {
        .revenue =
            SalesBriefRevenue{
                .total_orders = 17, .total_usd = StringOrNumber{248'000}, .last_12mo_usd = StringOrNumber{48'200}},
        .topProducts =
            std::vector<SalesBriefProduct>{{.product_name = u"Zelto Monitor"_s, .total_usd = StringOrNumber{31'000}},
                                           {.product_name = u"Zelto Probe"_s}},
        .contacts =
            std::vector<SalesBriefContact>{
                {.email = u"sandra.weiss@nordwind.example"_s, .firstname = u"Sandra"_s, .lastname = u"Weiss"_s}},
        .notes = std::vector<SalesBriefNote>{{.body = u"Three outages last quarter,&nbsp;asks for EU hosting."_s,
                                              .hs_timestamp = u"2026-02-09T09:00:00Z"_s,
                                              .author = u"Kim Brandt"_s}},
        .links = SalesBriefLinks{.crm = u"https://crm.example/42"_s, .hubspot = u"https://hubspot.example/hs-42"_s}};
}

TimelineResponse timeline() {
    TimelineResponse found;
    int day = 27;
    for (const auto* type : {"call", "email", "meeting", "note", "task", "letter"})
        found.timeline.push_back({.eventType = QString::fromLatin1(type),
                                  .date = u"2026-02-%1T10:15:00Z"_s.arg(day--),
                                  .subject = u"Talk about hosting"_s,
                                  .outcome = u"Connected"_s,
                                  .owner = u"Kim Brandt"_s});
    return found;
}

std::vector<CalendarMeeting> meetings() {
    const auto meeting = [](const QString& id, const QString& summary, int hour) {
        return CalendarMeeting{.id = id,
                               .summary = summary,
                               .start = u"2026-03-02T%1:00:00Z"_s.arg(hour, 2, 10, QChar{u'0'}),
                               .end = u"2026-03-02T%1:30:00Z"_s.arg(hour, 2, 10, QChar{u'0'})};
    };
    std::vector<CalendarMeeting> all{
        meeting(u"m-1"_s, u"Nordwind: renewal"_s, 10), meeting(u"m-2"_s, u"Halden Freight, first call"_s, 12),
        meeting(u"m-3"_s, u"A weekly exchange about everything that has been left open since the last one of them"_s,
                14),
        meeting(u"m-4"_s, u"Kestrel Robotics: pilot review"_s, 15)};
    all[0].matchedCompany = companies()[0];
    for (const auto* guest : {"tom.becker", "jo.lind", "mia.roth", "ben.falk", "ida.kern", "max.orth"})
        all[0].attendees.push_back({.email = QString::fromLatin1(guest) + u"@nordwind.example"_s});
    all[0].attendees.insert(all[0].attendees.begin(),
                            {.email = u"sandra.weiss@nordwind.example"_s, .displayName = u"Sandra Weiss"_s});
    return all;
}

// MARK: - Home

void enter(const ScreenshotScene& scene) {
    scene.signIn();
    settle();
}

/// With meetings and a last session.
void enterFully(const ScreenshotScene& scene) {
    scene.signIn();
    scene.session().setUpcomingMeetings(meetings());
    scene.store.records.push_back(
        SessionRecord::make({.durationSecs = 723,
                             .meddic = {.metrics = true, .economicBuyer = true, .identifyPain = true, .champion = true},
                             .companyName = u"Halden Freight"_s},
                            scene.fixture.clock.wallNow() - 20h));
    scene.session().setModelContext(&scene.store);
    settle();
}

void find(const ScreenshotScene& scene) {
    enter(scene);
    auto& briefings = scene.fixture.briefings;
    briefings.onSearch = [](const QString&) { return companies(); };
    briefings.onBrief = [](const CompanyQuery&) { return brief(); };
    briefings.onHandoff = [](const CompanyQuery&) { return handoff(); };
    briefings.onTimeline = timeline;
    scene.search(u"Nord"_s);
}

void unfold(const ScreenshotScene& scene) {
    find(scene);
    scene.views().home()->toggleCompany(0);
    settle();
}

void prepareCall(const ScreenshotScene& scene) {
    enterFully(scene);
    HomeView& home = *scene.views().home();
    home.callPrep()->setCallPrepNotes(u"Ask about the outages in January, and who signs in June. "_s.repeated(16));
    home.callPrep()->toggleGoal(0);
    home.callPrep()->toggleGoal(2);
}

ScreenshotStateList homeStates() {
    const auto signIn = pictured(u"home-sign-in"_s, [](const ScreenshotScene&) {});
    const auto start = pictured(u"home-start"_s, enterFully);
    auto field = start;
    field.name = u"home-search-focus"_s;
    field.tabs = 0;
    field.arrange = [](const ScreenshotScene& scene) {
        enter(scene);
        scene.fixture.briefings.gate.close();
        scene.search(u"Nord"_s);
    };
    const auto results = pictured(u"home-results"_s, find);
    const auto unfolded = pictured(u"home-brief"_s, unfold, largest);
    const auto everything = pictured(
        u"home-brief-handoff-timeline"_s,
        [](const ScreenshotScene& scene) {
            unfold(scene);
            scene.views().home()->toggleHandoff(0);
            scene.views().home()->toggleTimeline(0);
            settle();
        },
        largest);
    auto further = everything;
    further.name = u"home-brief-handoff-timeline-scrolled"_s;
    further.pages = 1;
    auto focused = start;
    focused.name = u"home-focus"_s;
    focused.tabs = 1;
    auto smallest = pictured(u"home-results-smallest"_s, find, QSize{520, 400});
    return {
        signIn,
        light(signIn),
        pictured(u"home-sign-in-error"_s,
                 [](const ScreenshotScene& scene) { scene.session().setErrorMessage(u"Authentication cancelled"_s); }),
        start,
        light(start),
        pictured(u"home-start-whole"_s, enterFully, largest),
        pictured(u"home-call-prep"_s, prepareCall, largest),
        light(pictured(u"home-call-prep"_s, prepareCall, largest)),
        pictured(
            u"home-error"_s,
            [](const ScreenshotScene& scene) {
                enterFully(scene);
                scene.session().setErrorMessage(u"Server did not provide ephemeral token"_s);
            },
            largest),
        field,
        focused,
        results,
        light(results),
        smallest,
        pictured(u"home-brief-loading"_s,
                 [](const ScreenshotScene& scene) {
                     find(scene);
                     scene.fixture.briefings.gate.close();
                     scene.views().home()->toggleCompany(0);
                 }),
        pictured(u"home-brief-error"_s,
                 [](const ScreenshotScene& scene) {
                     find(scene);
                     scene.fixture.briefings.onBrief = [](const CompanyQuery&) -> FakeBriefings::Result<SalesBrief> {
                         return std::unexpected(BriefingError{.status = 500});
                     };
                     scene.views().home()->toggleCompany(0);
                 }),
        unfolded,
        light(unfolded),
        everything,
        further,
        light(further)};
}

// MARK: - Calendar

void openCalendar(const ScreenshotScene& scene) {
    scene.signIn();
    scene.openTab(u"calendar"_s);
}

void answerMeetings(const ScreenshotScene& scene) {
    scene.fixture.briefings.respond = [] { return FakeBriefings::Meetings{meetings()}; };
}

ScreenshotStateList calendarStates() {
    const auto folded = pictured(u"calendar-folded"_s, [](const ScreenshotScene& scene) {
        answerMeetings(scene);
        openCalendar(scene);
    });
    const auto unfolded = pictured(
        u"calendar-unfolded"_s,
        [](const ScreenshotScene& scene) {
            answerMeetings(scene);
            openCalendar(scene);
            scene.views().calendar()->toggleMeeting(0);
        },
        largest);
    const auto empty = pictured(u"calendar-empty"_s, openCalendar);
    const auto problem = pictured(u"calendar-error"_s, [](const ScreenshotScene& scene) {
        scene.fixture.briefings.respond = [] {
            return FakeBriefings::Meetings{std::unexpected(Error{BriefingError{.status = 503}})};
        };
        openCalendar(scene);
    });
    auto focused = folded;
    focused.name = u"calendar-focus"_s;
    focused.tabs = 1;
    auto smallest = folded;
    smallest.name = u"calendar-smallest"_s;
    smallest.size = QSize{520, 400};
    return {folded,
            light(folded),
            smallest,
            focused,
            unfolded,
            light(unfolded),
            empty,
            light(empty),
            pictured(u"calendar-loading"_s,
                     [](const ScreenshotScene& scene) {
                         scene.fixture.briefings.gate.close();
                         openCalendar(scene);
                     }),
            problem,
            light(problem)};
}

// MARK: - Handoff window

ScreenshotStateList handoffStates() {
    const auto picture = [](const QString& name, HandoffResponse shown, std::optional<QSize> size = std::nullopt) {
        ScreenshotState state = pictured(name, {}, size);
        state.handoff = std::move(shown);
        return state;
    };
    return {picture(u"handoff-window"_s, handoff()), picture(u"handoff-window-narrow"_s, handoff(), QSize{400, 480}),
            picture(u"handoff-window-bare"_s, {.handoffNote = u"Nothing is known yet."_s}),
            picture(u"handoff-window-empty"_s, {})};
}

}  // namespace

ScreenshotStateList preparationStates() {
    ScreenshotStateList all;
    for (const auto& some : {homeStates(), calendarStates(), handoffStates()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

}  // namespace corvellan::test
