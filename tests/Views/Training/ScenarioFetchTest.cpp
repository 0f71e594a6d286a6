// The list of scenarios over real sockets.

#include <gtest/gtest.h>

#include "Services/HttpClient.h"
#include "Support/LoopbackHttpServer.h"
#include "Support/RawServer.h"
#include "Support/SessionFixture.h"
#include "Views/Training/ScenarioPickerView.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto list = R"({"scenarios": [{"key": "renewal", "name": "Renewal", "company": "Acorn", "industry": "Food"}],
                          "disc_types": ["dominant"], "more": 1})";

class ScenarioFetchTest : public testing::Test {
protected:
    ScenarioFetchTest() {
        // The machine's own proxy is not for loopback.
        for (const char* name : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
            qunsetenv(name);
    }

    ScenarioPickerView& view() {
        if (!m_view)
            m_view = std::make_unique<ScenarioPickerView>(fixture.session(), http);
        return *m_view;
    }
    /// Opens the screen on a coach at this port.
    void open(int port) {
        fixture.session().setServerURL(u"ws://127.0.0.1:%1/ws"_s.arg(port));
        view().appear();
    }
    [[nodiscard]] int port() const { return QUrl{server.base()}.port(); }
    [[nodiscard]] bool ends() {
        return spinUntil([this] { return !view().isLoading(); });
    }

    SessionFixture fixture;
    ManualClock clock;
    HttpClient http{mainExecutor(), clock};
    LoopbackHttpServer server;

private:
    std::unique_ptr<ScenarioPickerView> m_view;
};

TEST_F(ScenarioFetchTest, theListComesOverTheWire) {
    ASSERT_TRUE(server.listen());
    server.answer(200, list);
    fixture.auth->accessToken = u"secret"_s;
    open(port());
    ASSERT_TRUE(ends());
    EXPECT_EQ(view().fetchErrorText(), QString{});
    ASSERT_EQ(view().scenarios().size(), 1);
    EXPECT_EQ(view().scenarios()[0].key, u"renewal"_s);
    ASSERT_EQ(server.requests.size(), 1);
    EXPECT_EQ(server.requests[0].method, "GET");
    EXPECT_EQ(server.requests[0].target, "/scenarios");
    EXPECT_EQ(server.requests[0].header("Authorization"), "Bearer secret");
    EXPECT_EQ(server.requests[0].body, QByteArray{});
}

TEST_F(ScenarioFetchTest, withoutATokenTheHeaderIsMissing) {
    ASSERT_TRUE(server.listen());
    server.answer(200, list);
    open(port());
    ASSERT_TRUE(ends());
    for (const auto& [name, value] : server.requests.at(0).headers)
        EXPECT_NE(name.toLower(), "authorization");
}

TEST_F(ScenarioFetchTest, aServerThatAnswersFiveHundredWithAPageGivesTheDecodersDescription) {
    const QByteArray page = "<!doctype html><h1>500 Internal Server Error</h1>";
    ASSERT_TRUE(server.listen());
    server.answer(500, page);
    open(port());
    ASSERT_TRUE(ends());
    EXPECT_EQ(view().fetchErrorText(),
              u"Failed to load: "_s + ScenariosResponse::decode(page).error().errorDescription());
}

TEST_F(ScenarioFetchTest, aServerThatBreaksOffIsTold) {
    RawServer raw;
    raw.onRequest = [](RawServer& connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n{\"scenarios\"");
        connection.finish();
    };
    ASSERT_TRUE(raw.listen());
    open(raw.url(u"http"_s).port());
    ASSERT_TRUE(ends());
    EXPECT_TRUE(view().fetchErrorText().startsWith(u"Failed to load: "_s)) << qPrintable(view().fetchErrorText());
    EXPECT_FALSE(view().canStart());
}

TEST_F(ScenarioFetchTest, nobodyBehindThePortIsTold) {
    ASSERT_TRUE(server.listen());
    const int gone = port();
    server = LoopbackHttpServer{};
    open(gone);
    ASSERT_TRUE(ends());
    EXPECT_TRUE(view().fetchErrorText().startsWith(u"Failed to load: "_s)) << qPrintable(view().fetchErrorText());
}

TEST_F(ScenarioFetchTest, aServerThatNeverAnswersHasAMinute) {
    server.respond = [](const LoopbackHttpServer::Request&) { return QByteArray{}; };
    ASSERT_TRUE(server.listen());
    open(port());
    ASSERT_TRUE(spinUntil([this] { return !server.requests.isEmpty(); }));
    settleAfter(clock, 59s);
    EXPECT_TRUE(view().isLoading());
    settleAfter(clock, 1s);
    ASSERT_TRUE(ends());
    EXPECT_TRUE(view().fetchErrorText().startsWith(u"Failed to load: "_s)) << qPrintable(view().fetchErrorText());
}

TEST_F(ScenarioFetchTest, anAnswerWithoutEndIsGivenUp) {
    ASSERT_TRUE(server.listen());
    server.answer(200, QByteArray(2 * 1024 * 1024, ' '));
    open(port());
    ASSERT_TRUE(ends());
    EXPECT_TRUE(view().fetchErrorText().startsWith(u"Failed to load: "_s)) << qPrintable(view().fetchErrorText());
}

}  // namespace

}  // namespace corvellan::test
