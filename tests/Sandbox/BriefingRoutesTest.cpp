#include <QTemporaryDir>

#include "Base/DebugLog.h"
#include "Services/BriefingService.h"
#include "Services/HttpClient.h"
#include "SignedInFixture.h"

namespace corvellan::test {

namespace {

using namespace std::chrono_literals;

/// The program's own client on one side, the sandbox on the other.
class BriefingRoutesTest : public SignedInFixture {
protected:
    void SetUp() override {
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
    }

    void serve(sandbox::SandboxOptions options = {}) {
        start(std::move(options));
        service = std::make_unique<BriefingService>(http, base(), debugLog);
        token = tokenFor();
    }
    [[nodiscard]] QString base() const { return u"http://127.0.0.2:%1"_s.arg(box->chatPort()); }

    /// Whatever a client would never send.
    HttpAnswer ask(const QByteArray& method, const QString& pathAndQuery, const QByteArray& body = {},
                   const QByteArray& contentType = "application/json") {
        HttpRequest request{.method = method,
                            .url = QUrl{base() + u"/api/briefings/"_s + pathAndQuery, QUrl::StrictMode},
                            .headers = {{"Authorization", "Bearer " + token.toUtf8()}, {"Content-Type", contentType}},
                            .body = body};
        const auto answer = complete(http.send(std::move(request), {}));
        EXPECT_TRUE(answer);
        return answer.value_or(HttpAnswer{});
    }

    template <typename T>
    static int statusOf(const std::expected<T, Error>& answer) {
        const auto* const refusal = answer ? nullptr : answer.error().template as<BriefingError>();
        return refusal ? refusal->status : 0;
    }

    QTemporaryDir folder;
    DebugLog debugLog{folder.filePath(u"debug.log"_s), clock};
    HttpClient http{mainExecutor(), clock};
    std::unique_ptr<BriefingService> service;
    QString token;
};

}  // namespace

TEST_F(BriefingRoutesTest, tellsAUserOfTheNextMeetings) {
    serve();
    const auto meetings = complete(service->fetchUpcoming(token, 5));
    ASSERT_TRUE(meetings) << meetings.error().errorDescription().toStdString();
    ASSERT_EQ(meetings->size(), 5U);
    EXPECT_EQ(meetings->at(0).matchedCompany->name, u"Halden Freight"_s);
    EXPECT_EQ(meetings->at(0).matchedCompany->id.stringValue, u"4711"_s);
    EXPECT_EQ(meetings->at(0).attendees.at(0).email, u"anna@fernhill.example"_s);
    EXPECT_GT(*meetings->at(0).startDate(), clock.wallNow());
    EXPECT_EQ(complete(service->fetchUpcoming(tokenFor(u"ben@fernhill.example"_s), 1)).value().at(0).attendees[0].email,
              u"ben@fernhill.example"_s);
}

TEST_F(BriefingRoutesTest, findsCompaniesByTheirNames) {
    serve();
    const auto matches = complete(service->searchCompany(token, u"ostler & fin"_s, 3));
    ASSERT_TRUE(matches);
    ASSERT_EQ(matches->size(), 1U);
    EXPECT_EQ(matches->at(0).source, u"hubspot"_s);
    EXPECT_EQ(matches->at(0).hubspotId, u"77120833"_s);
    EXPECT_EQ(complete(service->searchCompany(token, u""_s, 3)).value().size(), 0U);
}

TEST_F(BriefingRoutesTest, tellsWhatIsKnownOfACompanyByAnyOfItsNumbers) {
    serve();
    for (const auto& query :
         {CompanyQuery{.company = u"Halden Freight"_s}, CompanyQuery{.customerId = 4711},
          CompanyQuery{.hubspotId = u"90210447"_s}, CompanyQuery{u"Halden Freight"_s, 4711, u"90210447"_s}}) {
        const auto brief = complete(service->fetchBrief(token, query));
        ASSERT_TRUE(brief) << brief.error().errorDescription().toStdString();
        EXPECT_EQ(brief->revenue->total_usd->value, 184500.5);
        EXPECT_EQ(brief->revenue->last_12mo_usd->value, 61200);
        EXPECT_EQ(brief->topProducts->at(2).total_usd->value, std::nullopt);
        EXPECT_EQ(brief->contacts->size(), 3U);
        EXPECT_TRUE(brief->notes->at(0).body->contains(u"&nbsp;"_s));
    }
}

TEST_F(BriefingRoutesTest, saysInTheBriefThatNothingIsKnown) {
    serve();
    const auto brief = complete(service->fetchBrief(token, {.company = u"Ärger & Söhne"_s}));
    ASSERT_TRUE(brief);
    EXPECT_EQ(brief->error, u"Nothing is known of Ärger & Söhne"_s);
    EXPECT_FALSE(brief->revenue);
    EXPECT_EQ(complete(service->fetchBrief(token, {})).value().error, u"Nothing is known of this company"_s);
    EXPECT_TRUE(complete(service->fetchBrief(token, {.customerId = 9})).value().error);
}

TEST_F(BriefingRoutesTest, handsACustomerOverInMarkdown) {
    serve();
    const auto handoff = complete(service->fetchHandoff(token, {u"Halden Freight"_s, 4711, u"90210447"_s}));
    ASSERT_TRUE(handoff) << handoff.error().errorDescription().toStdString();
    for (const auto& part : {u"## "_s, u"### "_s, u"\n| Name | Role |"_s, u"\n- "_s, u"**140 trucks**"_s,
                             u"tom.berg@haldenfreight.example"_s, u"(555) 012-3456"_s, u"& a free map"_s})
        EXPECT_TRUE(handoff->handoffNote.contains(part)) << part.toStdString();
    EXPECT_EQ(handoff->meta->deviceCount, 140);
    EXPECT_EQ(handoff->hubspot->noteId, u"hn-771"_s);
    EXPECT_EQ(statusOf(complete(service->fetchHandoff(token, {.company = u"Marlow Transit"_s}))), 404);
    EXPECT_EQ(statusOf(complete(service->fetchHandoff(token, {}))), 404);
}

TEST_F(BriefingRoutesTest, tellsWhatHappenedLately) {
    serve();
    clock.advance(11h);  // So that today's events are past.
    const auto timeline = complete(service->fetchTimeline(token, u"90210447"_s, std::nullopt, 90));
    // The token holds for an hour only.
    EXPECT_EQ(statusOf(timeline), 401);
    token = tokenFor();
    const auto again = complete(service->fetchTimeline(token, u"90210447"_s, std::nullopt, 90));
    ASSERT_TRUE(again) << again.error().errorDescription().toStdString();
    EXPECT_EQ(again->entityId, u"90210447"_s);
    EXPECT_EQ(again->count, 6);
    EXPECT_TRUE(again->activityTypes.contains(u"webinar_signup"_s));
    EXPECT_EQ(complete(service->fetchTimeline(token, std::nullopt, u"maria.solheim@haldenfreight.example"_s, 90))
                  .value()
                  .count,
              1);
    EXPECT_EQ(complete(service->fetchTimeline(token, u"61200915"_s, std::nullopt, 90)).value().count, 0);
    EXPECT_EQ(statusOf(complete(service->fetchTimeline(token, std::nullopt, std::nullopt, 90))), 400);
    EXPECT_EQ(statusOf(complete(service->fetchTimeline(token, u"nobody"_s, std::nullopt, 90))), 404);
    EXPECT_EQ(statusOf(complete(service->fetchTimeline(token, std::nullopt, u""_s, 90))), 404);
}

TEST_F(BriefingRoutesTest, letNobodyInWithoutAGoodToken) {
    serve({.accounts = {.tokenLifetime = 90s}});
    EXPECT_EQ(statusOf(complete(service->fetchUpcoming(u"x.y.z"_s, 5))), 401);
    EXPECT_EQ(statusOf(complete(service->searchCompany({}, u"halden"_s, 3))), 401);
    EXPECT_EQ(statusOf(complete(service->fetchBrief(token + u'x', {}))), 401);
    EXPECT_TRUE(complete(service->fetchHandoff(token, {.customerId = 4711})));
    clock.advance(90s);
    EXPECT_EQ(statusOf(complete(service->fetchHandoff(token, {.customerId = 4711}))), 401);
    token = tokenFor();
    box->accounts().revoke(token);
    EXPECT_EQ(statusOf(complete(service->fetchTimeline(token, u"90210447"_s, std::nullopt, 90))), 401);
    EXPECT_TRUE(logs(u"refused (401): the access token is not good, or no longer"_s));
}

TEST_F(BriefingRoutesTest, refusesWhatIsMalformed) {
    serve();
    for (const auto& target :
         {u"upcoming?max_results=0"_s, u"upcoming?max_results=many"_s, u"upcoming?max_results=101"_s,
          u"upcoming?max_results=1&max_results=2"_s, u"engagement-timeline?companyId=90210447&daysBack=0"_s,
          u"engagement-timeline?companyId=90210447&daysBack=3651"_s})
        EXPECT_EQ(ask("GET", target).status, 400) << target.toStdString();
    for (const auto* const body : {"", "[]", "{\"company\":7}", "{\"company\":\"a\",\"limit\":0}", "{\"limit\":3}",
                                   "{\"company\":\"a\",\"limit\":\"3\"}", "{\"company\":"})
        EXPECT_EQ(ask("POST", u"resolve"_s, body).status, 400) << body;
    EXPECT_EQ(ask("POST", u"resolve"_s, R"({"company":"a"})", "text/plain").status, 415);
    EXPECT_EQ(ask("POST", u"resolve"_s, R"({"company":")" + QByteArray(70'000, 'a') + "\"}").status, 413);
    EXPECT_EQ(ask("GET", u"nothing"_s).status, 404);
    EXPECT_EQ(ask("POST", u"resolve"_s, R"({"company":"kestrel"})").status, 200);
}

TEST_F(BriefingRoutesTest, noTokenReachesTheLog) {
    serve();
    std::ignore = complete(service->fetchUpcoming(token, 5));
    std::ignore = complete(service->fetchUpcoming(token + u'x', 5));
    EXPECT_TRUE(logs(u"5 meetings for anna@fernhill.example"_s));
    EXPECT_FALSE(logs(token));
    EXPECT_FALSE(logs(token.section(u'.', 1, 1)));
}

TEST_F(BriefingRoutesTest, servesTheCustomersThatItIsGiven) {
    auto customers = sandbox::CustomerBook::parse(R"({"customers":[{"name":"Acme","match":{"source":"own","id":7}}]})");
    ASSERT_TRUE(customers);
    sandbox::SandboxOptions options;
    options.customers = std::move(*customers);
    serve(std::move(options));
    EXPECT_EQ(complete(service->searchCompany(token, u"acme"_s, 3)).value().at(0).source, u"own"_s);
    EXPECT_EQ(complete(service->fetchUpcoming(token, 5)).value().size(), 0U);
}

}  // namespace corvellan::test
