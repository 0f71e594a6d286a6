#include "Sandbox/CallScript.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "Sandbox/UtteranceTexts.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using sandbox::CallScript;
using sandbox::ScriptError;
using sandbox::Spoken;

constexpr const char* sample =
    "# A comment.\n"
    "title | A call\n"
    "\n"
    "voice | mic | en-us+f3 | 150\n"
    "mic | 0:01.5 ~ 2.25 | Good morning to you, Tom.\r\n"
    "system | 65 | Good morning | and goodbye.\n"
    "mic | 1:05.250 | Oh.";

CallScript parsed(const char* text) {
    auto script = CallScript::parse(text);
    EXPECT_TRUE(script) << script.error().errorDescription().toStdString();
    return script.value_or(CallScript{});
}

sandbox::Utterance lasting(double seconds) {
    return {.firstSample = 0, .endSample = static_cast<std::int64_t>(seconds * 24'000), .pcm = {}};
}

/// What the texts of one side make of utterances with these lengths.
QStringList answers(const CallScript& script, AudioSourceTag side, std::initializer_list<double> lengths) {
    const auto texts = sandbox::scriptTexts(script)(side);
    QStringList said;
    for (const double length : lengths)
        texts->finished(lasting(length), [&](const Spoken& spoken) { said.append(spoken.text.value_or(u"-"_s)); });
    return said;
}

}  // namespace

TEST(CallScriptTest, readsLinesVoicesAndTitle) {
    const auto script = parsed(sample);
    EXPECT_EQ(script.title, u"A call"_s);
    EXPECT_EQ(script.mic, (sandbox::ScriptVoice{.name = u"en-us+f3"_s, .wordsPerMinute = 150}));
    EXPECT_EQ(script.system, sandbox::ScriptVoice{});
    ASSERT_EQ(script.lines.size(), 3U);
    EXPECT_EQ(script.lines[0], (sandbox::ScriptLine{.number = 1,
                                                    .side = AudioSourceTag::mic,
                                                    .startSeconds = 1.5,
                                                    .seconds = 2.25,
                                                    .text = u"Good morning to you, Tom."_s}));
    EXPECT_EQ(script.lines[1].startSeconds, 65);
    EXPECT_EQ(script.lines[1].text, u"Good morning | and goodbye."_s);
    EXPECT_EQ(script.lines[2].startSeconds, 65.25);
    EXPECT_EQ(script.linesOf(AudioSourceTag::mic).size(), 2U);
}

TEST(CallScriptTest, estimatesALengthThatIsNotGiven) {
    const QString text = u"What would the right tool have to do for you?"_s;
    EXPECT_NEAR(sandbox::estimatedSeconds(text, 165), 2.08, 2.08 / 8);
    EXPECT_NEAR(sandbox::estimatedSeconds(text, 330), sandbox::estimatedSeconds(text, 165) / 2, 0.001);
    EXPECT_GT(parsed("mic | 1 | ...\n").lines[0].seconds, 0);
    EXPECT_LE(sandbox::estimatedSeconds(u"word "_s.repeated(2000), 165), 60);
}

struct BadScript {
    const char* text;
    const char* message;
};

class BadScripts : public testing::TestWithParam<BadScript> {};

TEST_P(BadScripts, areRefusedWithTheLine) {
    const auto script = CallScript::parse(GetParam().text);
    ASSERT_FALSE(script);
    EXPECT_EQ(script.error().errorDescription().toStdString(), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, BadScripts,
    testing::Values(
        BadScript{"", "the script holds no line"}, BadScript{"# nothing\ntitle | x\n", "the script holds no line"},
        BadScript{"mic | 0:01 | Hello.\nphone | 0:02 | Hello.\n",
                  "line 2: \"phone\" begins no line: mic, system, voice and title do"},
        BadScript{"\n\nmic | 0:01\n", "line 3: a line is \"mic or system | start | what is said\""},
        BadScript{"mic | 0:01 | \n", "line 1: nothing is said"},
        BadScript{"mic | soon | Hello.\n", "line 1: \"soon\" is no start such as 0:02.5 or 0:02.5 ~ 3.4"},
        BadScript{"mic | 0:75 | Hello.\n", "line 1: \"0:75\" is no start such as 0:02.5 or 0:02.5 ~ 3.4"},
        BadScript{"mic | 0:5 | Hello.\n", "line 1: \"0:5\" is no start such as 0:02.5 or 0:02.5 ~ 3.4"},
        BadScript{"mic | -1 | Hello.\n", "line 1: \"-1\" is no start such as 0:02.5 or 0:02.5 ~ 3.4"},
        BadScript{"mic | 1e3 | Hello.\n", "line 1: \"1e3\" is no start such as 0:02.5 or 0:02.5 ~ 3.4"},
        BadScript{"mic | 1 ~ 2 ~ 3 | Hello.\n", "line 1: \"1 ~ 2 ~ 3\" is no start such as 0:02.5 or 0:02.5 ~ 3.4"},
        BadScript{"mic | 1 ~ 0 | Hello.\n", "line 1: \"0\" is no length of up to 60 seconds"},
        BadScript{"mic | 1 ~ 61 | Hello.\n", "line 1: \"61\" is no length of up to 60 seconds"},
        BadScript{"mic | 99999 | Hello.\n", "line 1: a call is at most four hours long"},
        BadScript{"mic | 5 | Hello.\nsystem | 4.9 | Hello.\n", "line 2: it starts before the line above it"},
        BadScript{"voice | mic | en\n", "line 1: a voice is \"voice | mic or system | name | words per minute\""},
        BadScript{"voice | mic | en; rm | 160\n", "line 1: \"en; rm\" cannot be the name of a voice"},
        BadScript{"voice | mic | en | fast\n", "line 1: \"fast\" is no speed: 80 to 450 words per minute"},
        BadScript{"title |\n", "line 1: a title is \"title | text\""},
        BadScript{"mic | 1 | \xff\n", "not UTF-8 text"}));

TEST(CallScriptTest, takesMeasuredLengths) {
    auto script = parsed(sample);
    const double own = script.lines[1].seconds;
    ASSERT_TRUE(script.useLengths("[2.5, null, 0.4]"));
    EXPECT_EQ(script.lines[0].seconds, 2.5);
    EXPECT_EQ(script.lines[1].seconds, own);
    EXPECT_EQ(script.lines[2].seconds, 0.4);
    EXPECT_EQ(script.useLengths("[1, 2]").error().errorDescription(), u"2 lengths for 3 lines"_s);
    EXPECT_EQ(script.useLengths("[1, 2, 0]").error().errorDescription(), u"length 3 is no time of up to 60 seconds"_s);
    EXPECT_EQ(script.useLengths("[1, 2, \"3\"]").error().errorDescription(),
              u"length 3 is no time of up to 60 seconds"_s);
    EXPECT_EQ(script.useLengths("{}").error().errorDescription(), u"lengths are a JSON array of seconds"_s);
}

TEST(CallScriptTest, writesWhatProgramsNeedToPlayIt) {
    const auto object = QJsonDocument::fromJson(parsed(sample).json()).object();
    EXPECT_EQ(object[u"voices"_s].toObject()[u"mic"_s].toObject(),
              (QJsonObject{{u"voice"_s, u"en-us+f3"_s}, {u"words_per_minute"_s, 150}}));
    const auto lines = object[u"lines"_s].toArray();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0].toObject(), (QJsonObject{{u"number"_s, 1},
                                                {u"side"_s, u"mic"_s},
                                                {u"start"_s, 1.5},
                                                {u"seconds"_s, 2.25},
                                                {u"text"_s, u"Good morning to you, Tom."_s}}));
    EXPECT_EQ(parsed(sample).list().section(u'\n', 1, 1), u"mic     0:01.5   2.2 s  Good morning to you, Tom."_s);
}

TEST(CallScriptTest, fitsWithinAQuarter) {
    EXPECT_TRUE(sandbox::fits(3, 4));
    EXPECT_TRUE(sandbox::fits(5, 4));
    EXPECT_FALSE(sandbox::fits(2.99, 4));
    EXPECT_FALSE(sandbox::fits(5.01, 4));
}

TEST(CallScriptTest, giveEachSideItsLinesInOrder) {
    const auto script =
        parsed("mic | 0 ~ 2 | One.\nsystem | 3 ~ 4 | Two.\nmic | 8 ~ 2 | Three.\nmic | 12 ~ 2 | Four.\n");
    EXPECT_EQ(answers(script, AudioSourceTag::mic, {2, 2.4, 1.6, 2}),
              (QStringList{u"One."_s, u"Three."_s, u"Four."_s, u"-"_s}));
    EXPECT_EQ(answers(script, AudioSourceTag::system, {2, 4}), (QStringList{u"-"_s, u"Two."_s}));
}

TEST(CallScriptTest, goesOnBehindALineThatWasLost) {
    const auto script =
        parsed("mic | 0 ~ 2 | One.\nmic | 8 ~ 4 | Two.\nmic | 14 ~ 8 | Three.\nmic | 24 ~ 16 | Four.\n");
    EXPECT_EQ(answers(script, AudioSourceTag::mic, {4, 2, 16}), (QStringList{u"Two."_s, u"-"_s, u"Four."_s}));
    // But not over half the call.
    EXPECT_EQ(answers(script, AudioSourceTag::mic, {16}), (QStringList{u"-"_s}));
}

TEST(CallScriptTest, theShippedCallIsTwoMinutesOfBothVoicesWithRoomBetweenThem) {
    const auto script = CallScript::load(u"discovery-call"_s);
    ASSERT_TRUE(script) << script.error().errorDescription().toStdString();
    EXPECT_EQ(script->linesOf(AudioSourceTag::mic).size(), 11U);
    EXPECT_EQ(script->linesOf(AudioSourceTag::system).size(), 11U);
    EXPECT_GT(script->durationSeconds(), 100);
    EXPECT_LT(script->durationSeconds(), 130);
    for (const auto side : {AudioSourceTag::mic, AudioSourceTag::system}) {
        double end = -10;
        for (const auto& line : script->linesOf(side)) {
            EXPECT_GT(line.startSeconds - end, 2.5) << line.number;
            end = line.startSeconds + line.seconds;
        }
    }
    for (std::size_t i = 1; i < script->lines.size(); ++i)
        EXPECT_NE(script->lines[i].side, script->lines[i - 1].side) << i;
}

TEST(CallScriptTest, namesAFileThatCannotBeRead) {
    const auto script = CallScript::load(u"no-such-call"_s);
    ASSERT_FALSE(script);
    EXPECT_TRUE(script.error().errorDescription().startsWith(u"cannot read no-such-call: "_s));
    EXPECT_TRUE(script.error().as<ScriptError>());
}

}  // namespace corvellan::test
