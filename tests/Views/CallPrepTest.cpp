#include <gtest/gtest.h>

#include <QSignalSpy>

#include "HomeFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class CallPrepTest : public testing::Test {
protected:
    HomeView& home() { return fixture.home(); }
    CallPrep& prep() { return *home().callPrep(); }

    HomeFixture fixture;
};

TEST_F(CallPrepTest, aNoteOf1500CharactersIsHeldAt1000) {
    QSignalSpy changes{&prep(), &CallPrep::callPrepNotesChanged};
    prep().setCallPrepNotes(QString{1500, u'x'});
    EXPECT_EQ(prep().callPrepNotes().size(), 1000);
    EXPECT_EQ(prep().notesCounter(), u"1000/1000"_s);
    EXPECT_EQ(prep().notesCounterColor(), u"orange"_s);
    prep().setCallPrepNotes(QString{1001, u'x'});
    EXPECT_EQ(changes.count(), 2) << "the field still shows what was cut";
}

TEST_F(CallPrepTest, theCounterWarnsFrom901Characters) {
    struct Row {
        int characters;
        QString counter, color;
    };
    for (const Row& row : {Row{0, u"0/1000"_s, u"gray"_s}, Row{900, u"900/1000"_s, u"gray"_s},
                           Row{901, u"901/1000"_s, u"orange"_s}, Row{1000, u"1000/1000"_s, u"orange"_s}}) {
        prep().setCallPrepNotes(QString{row.characters, u'x'});
        EXPECT_EQ(prep().notesCounter(), row.counter);
        EXPECT_EQ(prep().notesCounterColor(), row.color) << row.characters;
    }
}

TEST_F(CallPrepTest, charactersOfANoteAreCountedAsPeopleDo) {
    QString flags;
    for (int i = 0; i < 1200; ++i)
        flags += u"🇩🇪"_s;
    prep().setCallPrepNotes(flags);
    EXPECT_EQ(prep().notesCounter(), u"1000/1000"_s);
    EXPECT_EQ(prep().callPrepNotes().size(), 4000);
}

TEST_F(CallPrepTest, goalsStandInTheirOrderAndAreToggled) {
    const auto goal = [&](int row, const QByteArray& role) { return prep().goals()->value(row, role); };
    const QStringList labels{u"Discovery"_s, u"Demo"_s,    u"Budget"_s, u"Close"_s,
                             u"Support"_s,   u"Renewal"_s, u"Upsell"_s};
    ASSERT_EQ(prep().goals()->rowCount(), labels.size());
    for (int row = 0; row < labels.size(); ++row) {
        EXPECT_EQ(goal(row, "label"), labels[row]);
        EXPECT_EQ(goal(row, "isSelected"), false);
    }
    EXPECT_EQ(goal(0, "symbol"), u"magnifyingglass"_s);
    EXPECT_EQ(goal(6, "colorName"), u"mint"_s);
    prep().toggleGoal(2);
    EXPECT_EQ(goal(2, "isSelected"), true);
    prep().toggleGoal(2);
    EXPECT_EQ(goal(2, "isSelected"), false);
}

TEST_F(CallPrepTest, chosenGoalsAndNotesAreAbsentWhileThereAreNone) {
    EXPECT_FALSE(prep().currentGoals());
    EXPECT_FALSE(prep().currentCallNotes());
    prep().setCallPrepNotes(u" \n\t "_s);
    EXPECT_FALSE(prep().currentCallNotes());
    prep().setCallPrepNotes(u"\n Ask about EU hosting \n"_s);
    prep().toggleGoal(5);
    prep().toggleGoal(0);
    EXPECT_EQ(prep().currentCallNotes(), u"Ask about EU hosting"_s);
    EXPECT_EQ(prep().currentGoals(), (std::vector{CallGoal::discovery, CallGoal::renewal}));
}

}  // namespace

}  // namespace corvellan::test
