#include "HomeDriver.h"

#include <QClipboard>
#include <QGuiApplication>

namespace corvellan::test {

using namespace Qt::StringLiterals;

struct HomeDriver::World {
    FakeStore store;
    HomeFixture fixture;
    Theme theme;
};

namespace {

SalesBrief fullBrief() {
    SalesBrief brief{
        .revenue =
            SalesBriefRevenue{
                .total_orders = 17, .total_usd = StringOrNumber{2'480'000}, .last_12mo_usd = StringOrNumber{48'200}},
        .topProducts =
            std::vector<SalesBriefProduct>{{.product_name = u"Zelto Monitor"_s, .total_usd = StringOrNumber{31'000}},
                                           {.product_name = u"Zelto Probe"_s}},
        .contacts =
            std::vector<SalesBriefContact>{
                {.email = u"sandra.weiss@nordwind.example"_s, .firstname = u"Sandra"_s, .lastname = u"Weiss"_s}},
        .links = SalesBriefLinks{.crm = u"https://crm.example/42"_s, .hubspot = u"https://hubspot.example/hs-42"_s}};
    std::vector<SalesBriefNote> notes;
    for (int i = 1; i <= 9; ++i)
        notes.push_back(
            {.body = u"Note %1: three outages last quarter,&nbsp;asks for EU hosting and a fixed price."_s.arg(i),
             .hs_timestamp = u"2026-02-0%1T09:00:00Z"_s.arg(i),
             .author = u"Kim Brandt"_s});
    brief.notes = notes;
    return brief;
}

TimelineResponse longTimeline() {
    TimelineResponse timeline;
    const QStringList types{u"call"_s, u"email"_s, u"meeting"_s, u"note"_s, u"task"_s, u"letter"_s};
    for (int i = 0; i < 400; ++i)
        timeline.timeline.push_back({.eventType = types[i % types.size()],
                                     .date = u"2026-02-%1T10:15:00Z"_s.arg(i % 28 + 1, 2, 10, QChar{u'0'}),
                                     .subject = u"Event %1"_s.arg(i + 1),
                                     .outcome = i % 2 == 0 ? std::optional{u"Connected"_s} : std::nullopt,
                                     .owner = u"Kim Brandt"_s});
    return timeline;
}

}  // namespace

HomeDriver::HomeDriver() {
    reset();
}

HomeDriver::~HomeDriver() {
    m_world->fixture.forgetHome();
}

QObject* HomeDriver::home() {
    return &m_world->fixture.home();
}

QObject* HomeDriver::calendar() {
    return &m_world->fixture.calendar();
}

QObject* HomeDriver::theme() {
    return &m_world->theme;
}

SessionViewModel& HomeDriver::session() {
    return m_world->fixture.session.session();
}

void HomeDriver::reset() {
    if (m_world)
        m_world->fixture.forgetHome();
    m_world = std::make_unique<World>();
    m_historyRequests = 0;
    m_world->fixture.giveStore(m_world->store);
    connect(&m_world->fixture.home(), &HomeView::historyRequested, this, [this] { ++m_historyRequests; });
    Q_EMIT madeAnew();
}

void HomeDriver::knowCompanies() {
    m_world->fixture.know({nordwind(), nordlicht()});
    FakeBriefings& briefings = m_world->fixture.briefings();
    briefings.onBrief = [](const CompanyQuery& query) { return query.customerId ? fullBrief() : SalesBrief{}; };
    briefings.onHandoff = [](const CompanyQuery& query) {
        return HandoffResponse{
            .handoffNote = u"## Summary\n\n**%1** renews in March.\n\n- Asks for EU hosting"_s.arg(*query.company),
            .meta = HandoffMeta{.deviceCount = 240, .callCount = 12, .engagementEmails = 7}};
    };
    briefings.onTimeline = longTimeline;
}

void HomeDriver::fillBriefs(int rows) {
    SalesBrief brief = fullBrief();
    brief.topProducts.emplace();
    brief.contacts.emplace();
    for (int i = 1; i <= rows; ++i) {
        brief.topProducts->push_back({.product_name = u"Product %1"_s.arg(i), .total_usd = StringOrNumber{i * 1000.0}});
        brief.contacts->push_back({.email = u"guest%1@nordwind.example"_s.arg(i), .firstname = u"Guest %1"_s.arg(i)});
    }
    m_world->fixture.briefings().onBrief = [brief](const CompanyQuery&) { return brief; };
}

void HomeDriver::failLoads() {
    const Error refused = BriefingError{.status = 500};
    FakeBriefings& briefings = m_world->fixture.briefings();
    briefings.onBrief = [refused](const CompanyQuery&) -> FakeBriefings::Result<SalesBrief> {
        return std::unexpected(refused);
    };
    briefings.onHandoff = [refused](const CompanyQuery&) -> FakeBriefings::Result<HandoffResponse> {
        return std::unexpected(refused);
    };
    briefings.onTimeline = [refused]() -> FakeBriefings::Result<TimelineResponse> { return std::unexpected(refused); };
}

void HomeDriver::holdAnswers(bool isHeld) {
    if (isHeld)
        m_world->fixture.briefings().gate.close();
    else
        m_world->fixture.briefings().gate.open();
    settle();
}

void HomeDriver::letTimePass(int milliseconds) {
    settleAfter(m_world->fixture.session.clock, std::chrono::milliseconds{milliseconds});
    settle();
}

void HomeDriver::settle() {
    test::settle();
}

void HomeDriver::signOut() {
    session().setServerURL(u"wss://coach.test/ws"_s);
    session().setUserEmail(std::nullopt);
}

void HomeDriver::setUser(const QString& email) {
    session().setUserEmail(email);
}

void HomeDriver::setError(const QString& text) {
    session().setErrorMessage(text.isEmpty() ? std::nullopt : std::optional{text});
}

void HomeDriver::setMeetings(int count) {
    std::vector<CalendarMeeting> meetings;
    for (int i = 1; i <= count; ++i)
        meetings.push_back(meetingNamed(u"m-%1"_s.arg(i), u"Meeting %1"_s.arg(i)));
    if (count > 0) {
        meetings[0].matchedCompany = nordwind();
        for (int i = 1; i <= 7; ++i)
            meetings[0].attendees.push_back({.email = u"guest%1@nordwind.example"_s.arg(i)});
        meetings[0].attendees[0].displayName = u"Sandra Weiss"_s;
    }
    session().setUpcomingMeetings(meetings);
}

void HomeDriver::setCalendarError(const QString& text) {
    session().setCalendarError(text.isEmpty() ? std::nullopt : std::optional{text});
}

void HomeDriver::setLoadingMeetings(bool isLoading) {
    session().setIsLoadingMeetings(isLoading);
}

void HomeDriver::addRecord(const QString& company, bool isTraining, bool isColdCall) {
    auto record =
        SessionRecord::make({.durationSecs = 723,
                             .meddic = {.metrics = true, .economicBuyer = true, .identifyPain = true, .champion = true},
                             .wasTrainMode = isTraining,
                             .companyName = company.isEmpty() ? std::nullopt : std::optional{company},
                             .audience = isColdCall ? AudienceType::coldCall : AudienceType::directSale},
                            m_world->fixture.session.clock.wallNow());
    complete(m_world->store.insert(record));
    settle();
}

void HomeDriver::holdConnecting() {
    m_world->fixture.session.ws->connectGate.close();
}

void HomeDriver::setDark(bool isDark) {
    m_world->theme.setIsDark(isDark);
}

int HomeDriver::searches() const {
    return static_cast<int>(m_world->fixture.briefings().searches.size());
}

int HomeDriver::meetingRequests() const {
    test::settle();
    return static_cast<int>(m_world->fixture.briefings().tokens.size());
}

bool HomeDriver::didLogIn() const {
    test::settle();
    return m_world->fixture.session.did("auth.login");
}

bool HomeDriver::isSessionActive() {
    settle();
    return session().isSessionActive();
}

QString HomeDriver::currentCompany() {
    settle();
    return session().currentCompany().value_or(QString{});
}

QString HomeDriver::openedPage() const {
    test::settle();
    const auto& pages = m_world->fixture.desktop.browser.pages;
    return pages.empty() ? QString{} : pages.back().toString();
}

int HomeDriver::handoffsShown() const {
    return static_cast<int>(m_world->fixture.handoffWindow.shown.size());
}

QString HomeDriver::clipboard() const {
    return QGuiApplication::clipboard()->text();
}

}  // namespace corvellan::test
