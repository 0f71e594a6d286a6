#include <gtest/gtest.h>

#include "JsonText.h"
#include "Models/JsonParsing.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

using test::failureOf;
using test::messageIn;

DecodingError::Kind kindOf(const QByteArray& json) {
    return failureOf(ServerMsg::decode(json)).kind;
}

QString messageOf(const QByteArray& json) {
    return messageIn<ServerMsg::Failure>(ServerMsg::decode(json)).message;
}

QByteArray nested(int depth, char open, char close) {
    return R"({"type":"pong","x":)" + QByteArray(depth, open) + QByteArray(depth, close) + '}';
}

std::optional<std::int64_t> signedWhole(std::string_view number) {
    const auto whole = wholeNumber(number);
    const auto* const value = whole ? std::get_if<std::int64_t>(&*whole) : nullptr;
    return value ? std::optional{*value} : std::nullopt;
}

std::optional<std::uint64_t> unsignedWhole(std::string_view number) {
    const auto whole = wholeNumber(number);
    const auto* const value = whole ? std::get_if<std::uint64_t>(&*whole) : nullptr;
    return value ? std::optional{*value} : std::nullopt;
}

}  // namespace

TEST(JsonParsingTest, whatIsNoJsonFailsAsThat) {
    for (const auto* json : {"", " ", "{", "}", "{\"type\":\"pong\"", "{\"type\":\"pong\"}}", "{\"type\":\"pong\",}",
                             "{'type':'pong'}", "{\"type\":\"pong\"} {}", "{\"type\":\"pong\"}x",
                             "/**/{\"type\":\"pong\"}", "{\"type\":\"pong\",\"x\":01}", "{\"type\":\"pong\",\"x\":+1}",
                             "{\"type\":\"pong\",\"x\":NaN}", "{\"type\":\"pong\",\"x\":\"\t\"}", "nul", "tru"})
        EXPECT_EQ(kindOf(json), DecodingError::Kind::notJson) << json;
}

TEST(JsonParsingTest, aMessageIsAnObject) {
    for (const auto* json : {"null", "[]", "1", "\"pong\"", "true", "1.5", "[{\"type\":\"pong\"}]"}) {
        const auto error = failureOf(ServerMsg::decode(json));
        EXPECT_EQ(error.kind, DecodingError::Kind::wrongType) << json;
        EXPECT_TRUE(error.path.isEmpty());
    }
}

TEST(JsonParsingTest, blanksAroundAMessageAreNoMatter) {
    EXPECT_TRUE(ServerMsg::decode(" \r\n\t{ \"type\" : \"pong\" } \n").has_value());
}

TEST(JsonParsingTest, bytesThatAreNoUtf8Fail) {
    for (const auto& bytes : {QByteArray{"\xff"}, QByteArray{"\xc3"}, QByteArray{"\xed\xa0\x80"},
                              QByteArray{"\xc0\xaf"}, QByteArray{"\xf4\x90\x80\x80"}})
        EXPECT_EQ(kindOf(R"({"type":"error","message":")" + bytes + "\"}"), DecodingError::Kind::notJson);
}

TEST(JsonParsingTest, halfASurrogatePairFailsOrReadsAsSomething) {
    for (const auto* escape : {R"(\ud800)", R"(\udc00)", R"(\ud800\ud800)", R"(\ud83dx)", R"(\ude00\ud83d)"}) {
        const auto decoded = ServerMsg::decode(R"({"type":"error","message":")" + QByteArray{escape} + "\"}");
        if (decoded.has_value())
            EXPECT_TRUE(std::get<ServerMsg::Failure>(decoded->value).message.isValidUtf16()) << escape;
    }
    EXPECT_EQ(messageOf(R"({"type":"error","message":"\ud83d\ude00"})"), u"\U0001F600"_s);
}

TEST(JsonParsingTest, aByteOrderMarkBeforeAMessageFailsIt) {
    EXPECT_EQ(kindOf("\xEF\xBB\xBF{\"type\":\"pong\"}"), DecodingError::Kind::notJson);
}

TEST(JsonParsingTest, aByteOrderMarkInATextIsACharacter) {
    EXPECT_EQ(messageOf("{\"type\":\"error\",\"message\":\"\xEF\xBB\xBF\xEF\xBB\xBFx\"}"), u"\ufeff\ufeffx"_s);
    EXPECT_EQ(messageOf(R"({"type":"error","message":"\ufeffx"})"), u"\ufeffx"_s);
}

TEST(JsonParsingTest, aNulIsACharacter) {
    EXPECT_EQ(messageOf(R"({"type":"error","message":"a\u0000b"})"), QString::fromUtf8("a\0b", 3));
    EXPECT_EQ(kindOf(R"({"type":"pong\u0000"})"), DecodingError::Kind::unknownValue);
}

TEST(JsonParsingTest, theLastOfTwoEqualKeysWins) {
    EXPECT_EQ(messageOf(R"({"type":"pong","message":"a","type":"error","message":"b"})"), u"b"_s);
    EXPECT_EQ(kindOf(R"({"type":"error","message":"a","message":null})"), DecodingError::Kind::wrongType);
}

TEST(JsonParsingTest, ignoredKeysMayNestDeeplyButNotWithoutEnd) {
    // The message's own object is one level.
    const auto deepest = static_cast<int>(deepestNesting) - 1;
    EXPECT_TRUE(ServerMsg::decode(nested(100, '[', ']')).has_value());
    EXPECT_TRUE(ServerMsg::decode(nested(deepest, '[', ']')).has_value());
    EXPECT_EQ(kindOf(nested(deepest + 1, '[', ']')), DecodingError::Kind::notJson);
    EXPECT_EQ(kindOf(nested(1'000'000, '[', ']')), DecodingError::Kind::notJson);
    QByteArray objects;
    for (int i = 0; i < 1'000'000; ++i)
        objects += "{\"a\":";
    EXPECT_EQ(kindOf(objects), DecodingError::Kind::notJson);
}

TEST(JsonParsingTest, aMessageOf16MebibytesIsReadAndALargerOneIsNot) {
    const QByteArray head = R"({"type":"error","message":")";
    const QByteArray tail = "\"}";
    const auto fits = largestMessageBytes - head.size() - tail.size();
    EXPECT_EQ(messageOf(head + QByteArray(fits, 'x') + tail).size(), fits);
    EXPECT_EQ(kindOf(head + QByteArray(fits + 1, 'x') + tail), DecodingError::Kind::notJson);
}

TEST(JsonParsingTest, wholeNumbersAreExactHoweverTheyAreWritten) {
    EXPECT_EQ(signedWhole("0"), 0);
    EXPECT_EQ(signedWhole("-0.000e99999999999999999999"), 0);
    EXPECT_EQ(signedWhole("42.0"), 42);
    EXPECT_EQ(signedWhole("1e3"), 1000);
    EXPECT_EQ(signedWhole("1E+3"), 1000);
    EXPECT_EQ(signedWhole("-1.250e2"), -125);
    EXPECT_EQ(signedWhole("4200e-2"), 42);
    EXPECT_EQ(signedWhole("0.0042e4"), 42);
    EXPECT_EQ(signedWhole("9007199254740993.0"), 9'007'199'254'740'993);
    EXPECT_EQ(signedWhole("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(signedWhole("-9223372036854775808.0"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(unsignedWhole("9223372036854775808"), 9'223'372'036'854'775'808U);
    EXPECT_EQ(unsignedWhole("18446744073709551615.00"), 18'446'744'073'709'551'615U);
    EXPECT_EQ(unsignedWhole("1.8446744073709551615e19"), 18'446'744'073'709'551'615U);
    EXPECT_EQ(unsignedWhole("1e19"), 10'000'000'000'000'000'000U);
}

TEST(JsonParsingTest, fractionsAndWhatNeedsMoreThan64BitsAreNoWholeNumbers) {
    for (const auto* number : {"0.5", "12.5", "1e-1", "-0.0001", "9007199254740992.5", "1.00000000000000000001",
                               "18446744073709551616", "-9223372036854775809", "1e20", "1e400", "1e-400",
                               "1e99999999999999999999", "1e-99999999999999999999", "1e2000000000"})
        EXPECT_EQ(wholeNumber(number), std::nullopt) << number;
}

TEST(JsonParsingTest, errorsNameTheFieldAndWhatIsWrongWithIt) {
    EXPECT_EQ(failureOf(ServerMsg::decode(R"({"type":"error"})")).errorDescription(),
              u"The field \"message\" is missing"_s);
    EXPECT_EQ(failureOf(ServerMsg::decode(R"({"type":"error","message":null})")).errorDescription(),
              u"The field \"message\" has the wrong type: expected a string, found null"_s);
    EXPECT_EQ(failureOf(ServerMsg::decode(R"({"type":"counterpart_done","latency_ms":0.5})")).errorDescription(),
              u"The number in the field \"latency_ms\" does not fit"_s);
    EXPECT_EQ(failureOf(ServerMsg::decode(R"({"type":"hello"})")).errorDescription(),
              u"The field \"type\" has an unknown value: hello"_s);
    EXPECT_EQ(failureOf(ServerMsg::decode("[]")).errorDescription(),
              u"The message has the wrong type: expected an object"_s);
    EXPECT_TRUE(failureOf(ServerMsg::decode("{")).errorDescription().startsWith(u"The message is not valid JSON: "_s));
}

TEST(JsonParsingTest, errorsQuoteOnlyTheBeginningOfALongWord) {
    const auto error = failureOf(ServerMsg::decode(R"({"type":")" + QByteArray(100'000, 'w') + "\"}"));
    EXPECT_LT(error.detail.size(), 100);
}

}  // namespace corvellan
