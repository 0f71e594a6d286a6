#include "Services/Auth/CallbackRequest.h"

#include <gtest/gtest.h>

namespace corvellan {

namespace {

using namespace Qt::StringLiterals;

/// The code of a request for `target`, "(none)" without one and "(refused)" for an error.
QString codeOf(const QByteArray& target) {
    const auto code = callback::code("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1:9876\r\n\r\n");
    return code ? code->value_or(u"(none)"_s) : u"(refused)"_s;
}

QString codeIn(const QByteArray& request) {
    const auto code = callback::code(request);
    return code ? code->value_or(u"(none)"_s) : u"(refused)"_s;
}

}  // namespace

TEST(CallbackRequestTest, takesTheValueOfTheItemNamedCode) {
    EXPECT_EQ(codeOf("/callback?code=abc&state=x"), u"abc"_s);
    EXPECT_EQ(codeOf("/callback?state=x&code=abc"), u"abc"_s);
    EXPECT_EQ(codeOf("/callback?encode=y&codes=z&Code=w&code=abc"), u"abc"_s);
}

TEST(CallbackRequestTest, anEmptyCodeIsACode) {
    EXPECT_EQ(codeOf("/callback?code="), u""_s);
    EXPECT_EQ(codeOf("/callback?code=&code=abc"), u""_s);
}

TEST(CallbackRequestTest, aCodeWithoutAnEqualsSignIsNone) {
    EXPECT_EQ(codeOf("/callback?code"), u"(none)"_s);
    EXPECT_EQ(codeOf("/callback?code&code=abc"), u"(none)"_s);
}

TEST(CallbackRequestTest, decodesTheCode) {
    EXPECT_EQ(codeOf("/callback?code=4%2F0a%2bb%3D%26%20c"), u"4/0a+b=& c"_s);
    EXPECT_EQ(codeOf("/callback?%63ode=abc"), u"abc"_s);
    EXPECT_EQ(codeOf("/callback?code=%C3%BC%F0%9F%98%80"), u"ü😀"_s);
    // No form: a plus is a plus.
    EXPECT_EQ(codeOf("/callback?code=a+b=c"), u"a+b=c"_s);
}

TEST(CallbackRequestTest, whatDoesNotDecodeIsNone) {
    for (const auto* const target :
         {"/callback?code=%", "/callback?code=%4", "/callback?code=%zz", "/callback?code=%-1", "/callback?code=% 1",
          "/callback?code=%FF", "/callback?code=%C3"})
        EXPECT_EQ(codeOf(target), u"(none)"_s) << target;
    // What else stands in the query is not looked at.
    EXPECT_EQ(codeOf("/callback?other=%zz&%FF&a|b{}&code=abc"), u"abc"_s);
}

TEST(CallbackRequestTest, doesNotLookAtThePath) {
    EXPECT_EQ(codeOf("/?code=abc"), u"abc"_s);
    EXPECT_EQ(codeOf("?code=abc"), u"abc"_s);
    EXPECT_EQ(codeOf("http://127.0.0.1:9876/x/y?code=abc"), u"abc"_s);
    EXPECT_EQ(codeIn("POST /callback?code=abc HTTP/1.1\r\n\r\n"), u"abc"_s);
}

TEST(CallbackRequestTest, otherRequestsHaveNone) {
    for (const auto* const target : {"/favicon.ico", "/callback", "/callback?", "/callback?error=access_denied",
                                     "/callback#code=abc", "/callback?a=b#?code=abc", "*"})
        EXPECT_EQ(codeOf(target), u"(none)"_s) << target;
}

TEST(CallbackRequestTest, readsTheFirstLineAlone) {
    EXPECT_EQ(codeIn("\r\n\r\nGET /?code=abc HTTP/1.1\r\n\r\n"), u"abc"_s);
    EXPECT_EQ(codeIn("GET / HTTP/1.1\r\nGET /?code=abc HTTP/1.1\r\n\r\n"), u"(none)"_s);
    EXPECT_EQ(codeIn("GET /?code=abc"), u"abc"_s);
    EXPECT_EQ(codeIn("GET"), u"(none)"_s);
    EXPECT_EQ(codeIn("/?code=abc"), u"(none)"_s);
    EXPECT_EQ(codeIn("\r\n"), u"(none)"_s);
    EXPECT_EQ(codeIn(QByteArray(4096, 'x')), u"(none)"_s);
}

TEST(CallbackRequestTest, refusesNothingAndWhatIsNoText) {
    EXPECT_EQ(codeIn(""), u"(refused)"_s);
    EXPECT_EQ(codeIn("GET /?code=abc HTTP/1.1\r\nCookie: \xFF\r\n\r\n"), u"(refused)"_s);
    EXPECT_EQ(codeIn(QByteArray(4096, '\xFF')), u"(refused)"_s);
    // Cut within a character.
    EXPECT_EQ(codeIn("GET /?code=abc HTTP/1.1\r\nCookie: \xC3"), u"(refused)"_s);
    const auto code = callback::code("");
    ASSERT_FALSE(code);
    EXPECT_EQ(code.error().kind, AuthError::Kind::noAuthorizationCode);
}

TEST(CallbackRequestTest, answersInTheseBytes) {
    EXPECT_EQ(callback::answer(),
              "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 79\r\nConnection: close\r\n\r\n"
              "<html><body><h2>Authenticated!</h2><p>You can close this tab.</p></body></html>");
}

}  // namespace corvellan
