#include "SignedInFixture.h"

namespace corvellan::test {

namespace {

class CallReportsTest : public SignedInFixture {
protected:
    void SetUp() override {
        start();
        call = holdCall();
        ASSERT_FALSE(call.isEmpty());
    }
    PlainAnswer report(const QByteArray& what, const QByteArray& body,
                       const QByteArray& contentType = "application/json") {
        return rest({.method = "POST",
                     .path = "/calls/" + call.toLatin1() + '/' + what,
                     .body = body,
                     .contentType = contentType});
    }
    [[nodiscard]] const sandbox::CallRecord& record() const { return box->calls().calls().front(); }

    QString call;
};

}  // namespace

TEST_F(CallReportsTest, aRatingIsKeptWithItsNote) {
    EXPECT_EQ(report("feedback", R"({"rating":1,"note":"good"})").status, 200);
    EXPECT_EQ(report("feedback", R"({"rating":-1})").status, 200);
    const auto feedback = json(rest({.path = "/calls/" + call.toLatin1()}))[u"feedback"_s].toArray();
    EXPECT_EQ(feedback,
              (QJsonArray{QJsonObject{{u"rating"_s, 1}, {u"note"_s, u"good"_s}}, QJsonObject{{u"rating"_s, -1}}}));
}

TEST_F(CallReportsTest, theLastOutcomeCounts) {
    EXPECT_EQ(report("outcome", R"({"outcome":"demo_booked"})").status, 200);
    EXPECT_EQ(report("outcome", R"({"outcome":"follow_up"})").status, 200);
    const auto list = QJsonDocument::fromJson(rest({.path = "/calls"}).body).array();
    EXPECT_EQ(list[0][u"outcome"_s], u"follow_up"_s);
}

TEST_F(CallReportsTest, aCallIsFoundInEitherCase) {
    call = call.toUpper();
    EXPECT_EQ(report("feedback", R"({"rating":1})").status, 200);
    EXPECT_EQ(rest({.path = "/calls/" + call.toLatin1()}).status, 200);
}

TEST_F(CallReportsTest, anUnknownCallIsNotFound) {
    call = u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6"_s;
    EXPECT_EQ(report("feedback", R"({"rating":1})").status, 404);
    EXPECT_EQ(report("outcome", R"({"outcome":"demo_booked"})").status, 404);
    EXPECT_EQ(rest({.path = "/calls/" + call.toLatin1()}).status, 404);
    EXPECT_EQ(report("other", "{}").status, 404);
}

TEST_F(CallReportsTest, whatIsNoReportIsRefused) {
    for (const auto* const body :
         {"", "7", "[]", "{}", R"({"rating":"1"})", R"({"rating":1.5})", R"({"rating":40000})", R"({"rating":-40000})",
          R"({"rating":1,"note":7})", R"({"rating":1)", R"({"note":"x"})"})
        EXPECT_EQ(report("feedback", body).status, 400) << body;
    for (const auto* const body : {"", "{}", R"({"outcome":7})", R"({"outcome":"telepathy"})"})
        EXPECT_EQ(report("outcome", body).status, 400) << body;
    EXPECT_EQ(report("feedback", R"({"rating":1,"note":")" + QByteArray(4001, 'x') + "\"}").status, 400);
    EXPECT_EQ(report("feedback", R"({"rating":1,"note":")" + QByteArray(70'000, 'x') + "\"}").status, 413);
    EXPECT_EQ(report("feedback", R"({"rating":1})", "text/plain").status, 415);
    EXPECT_TRUE(record().feedback.empty());
    EXPECT_FALSE(record().outcome);
    EXPECT_EQ(report("feedback", R"({"rating":1})", "Application/JSON; charset=utf-8").status, 200);
}

TEST_F(CallReportsTest, onlyTheNewestRatingsAreKept) {
    for (int i = 0; i < 101; ++i)
        ASSERT_EQ(report("feedback", R"({"rating":)" + QByteArray::number(i) + '}').status, 200);
    ASSERT_EQ(record().feedback.size(), 100U);
    EXPECT_EQ(record().feedback.front().rating, 1);
    EXPECT_EQ(record().feedback.back().rating, 100);
}

}  // namespace corvellan::test
