#include "Views/MemoryView.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "Models/MemoryStore.h"
#include "Support/ManualClock.h"
#include "Support/SessionFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class MemoryViewTest : public testing::Test {
protected:
    ~MemoryViewTest() override {
        m_view.reset();
        settleAfter(clock, 5s);
    }

    MemoryView& view() {
        if (!m_view)
            m_view = std::make_unique<MemoryView>(clock, path());
        return *m_view;
    }
    /// The screen opens on a file with `bytes`.
    MemoryView& openOn(const QByteArray& bytes) {
        write(bytes);
        view().appear();
        settle();
        return view();
    }
    void closeForGood() { m_view.reset(); }

    [[nodiscard]] QString path() const { return m_home.filePath(u".config/corvellan/memory.md"_s); }
    void write(const QByteArray& bytes) const {
        QDir{}.mkpath(QFileInfo{path()}.path());
        QFile file{path()};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    /// What is in the file; absent when there is none.
    [[nodiscard]] std::optional<QByteArray> written() const {
        QFile file{path()};
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        return file.readAll();
    }
    void pass(std::chrono::milliseconds time) { settleAfter(clock, time); }

    ManualClock clock;

private:
    QTemporaryDir m_home;
    std::unique_ptr<MemoryView> m_view;
};

const QString note = u"Territory: north. Grüße \U0001F600"_s;
const QByteArray noteBytes = note.toUtf8();

// MARK: - Limit and counter

TEST_F(MemoryViewTest, pasting2500CharactersLeavesTheFirst2000AndTheCounterShowsThemInOrange) {
    const QString pasted = QString{u'a'}.repeated(1999) + u"zb"_s + QString{u'c'}.repeated(499);
    ASSERT_EQ(pasted.size(), 2500);
    view().setMemory(pasted);
    EXPECT_EQ(view().memory(), pasted.left(2000));
    EXPECT_EQ(view().counterText(), u"2000/2000"_s);
    EXPECT_EQ(view().counterColor(), u"orange"_s);
}

TEST_F(MemoryViewTest, eighteenHundredReadGreyAndOneMoreOrange) {
    EXPECT_EQ(view().counterText(), u"0/2000"_s);
    EXPECT_EQ(view().counterColor(), u"gray"_s);
    view().setMemory(QString{u'a'}.repeated(1800));
    EXPECT_EQ(view().counterText(), u"1800/2000"_s);
    EXPECT_EQ(view().counterColor(), u"gray"_s);
    view().setMemory(QString{u'a'}.repeated(1801));
    EXPECT_EQ(view().counterText(), u"1801/2000"_s);
    EXPECT_EQ(view().counterColor(), u"orange"_s);
}

TEST_F(MemoryViewTest, charactersAreWhatAPersonCounts) {
    // A family of four: seven code points, eleven UTF-16 units, one character.
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"_s;
    view().setMemory(family.repeated(2001));
    EXPECT_EQ(view().memory(), family.repeated(2000));
    EXPECT_EQ(view().counterText(), u"2000/2000"_s);
}

TEST_F(MemoryViewTest, theCutIsAChangeOfItsOwn) {
    QSignalSpy changes{&view(), &MemoryView::memoryChanged};
    view().setMemory(QString{u'a'}.repeated(2001));
    EXPECT_EQ(changes.count(), 2);
    view().setMemory(QString{u'a'}.repeated(2000));
    EXPECT_EQ(changes.count(), 2) << "nothing has changed";
}

// MARK: - Saving

TEST_F(MemoryViewTest, typingInBurstsWritesTheFileOnlyHalfASecondAfterTheLastKey) {
    for (int length = 1; length <= 6; ++length) {
        view().setMemory(note.left(length));
        pass(499ms);
        EXPECT_EQ(written(), std::nullopt) << "after key " << length;
    }
    pass(1ms);
    EXPECT_EQ(written(), note.left(6).toUtf8());
}

TEST_F(MemoryViewTest, aPauseSavesAndSaysSoForTwoSeconds) {
    view().setMemory(note);
    pass(499ms);
    EXPECT_FALSE(view().saved());
    pass(1ms);
    EXPECT_TRUE(view().saved());
    EXPECT_EQ(written(), noteBytes);
    pass(1999ms);
    EXPECT_TRUE(view().saved());
    pass(1ms);
    EXPECT_FALSE(view().saved());
}

TEST_F(MemoryViewTest, anEditTakesTheBadgeAwayAtOnce) {
    view().setMemory(note);
    pass(500ms);
    ASSERT_TRUE(view().saved());
    view().setMemory(note + u'!');
    EXPECT_FALSE(view().saved());
}

TEST_F(MemoryViewTest, theButtonSavesAtOnce) {
    view().setMemory(note);
    view().pressSave();
    EXPECT_EQ(written(), noteBytes);
    EXPECT_TRUE(view().saved());
}

TEST_F(MemoryViewTest, aBadgeFromALaterSaveIsSwitchedOffEarlyByAnEarlierTimer) {
    view().pressSave();
    pass(1s);
    view().pressSave();
    pass(1s);
    EXPECT_FALSE(view().saved());
}

TEST_F(MemoryViewTest, missingFoldersAreMade) {
    ASSERT_FALSE(QFileInfo::exists(QFileInfo{path()}.path()));
    view().setMemory(note);
    view().pressSave();
    EXPECT_EQ(written(), noteBytes);
}

TEST_F(MemoryViewTest, aFolderThatCanNotBeMadeShowsNothingAndTheBadgeComesOn) {
    // A file stands where the folder belongs: not even root can go past it.
    const QString folder = QFileInfo{path()}.path();
    QDir{}.mkpath(QFileInfo{folder}.path());
    QFile obstacle{folder};
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    view().setMemory(note);
    pass(500ms);
    EXPECT_TRUE(view().saved());
    EXPECT_EQ(view().memory(), note);
    EXPECT_EQ(written(), std::nullopt);
}

TEST_F(MemoryViewTest, aFileThatCanNotBeWrittenShowsNothingAndTheBadgeComesOn) {
    QDir{}.mkpath(path());
    view().appear();
    view().setMemory(note);
    view().pressSave();
    EXPECT_TRUE(view().saved());
    EXPECT_TRUE(QFileInfo{path()}.isDir());
}

TEST_F(MemoryViewTest, theFileIsReplacedInOnePieceAndNothingIsLeftBeside) {
    openOn("old");
    QFile reader{path()};
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    view().setMemory(note);
    view().pressSave();
    EXPECT_EQ(reader.readAll(), "old") << "who was reading goes on with the old file";
    EXPECT_EQ(written(), noteBytes);
    EXPECT_EQ(QDir{QFileInfo{path()}.path()}.entryList(QDir::Files | QDir::Hidden), QStringList{u"memory.md"_s});
}

TEST_F(MemoryViewTest, aLinkedFileStaysALink) {
    const QString target = QFileInfo{path()}.path() + u"/elsewhere.md"_s;
    write("");
    ASSERT_TRUE(QFile::rename(path(), target));
    ASSERT_TRUE(QFile::link(target, path()));
    view().setMemory(note);
    view().pressSave();
    EXPECT_TRUE(QFileInfo{path()}.isSymLink());
    EXPECT_EQ(written(), noteBytes);
}

TEST_F(MemoryViewTest, anEmptiedNoteEmptiesTheFile) {
    openOn(noteBytes);
    view().setMemory({});
    pass(500ms);
    EXPECT_EQ(written(), QByteArray{});
}

// MARK: - Opening

TEST_F(MemoryViewTest, openingOnAFileWithTextRewritesItHalfASecondLaterAndShowsSavedForTwoSeconds) {
    openOn(noteBytes);
    EXPECT_EQ(view().memory(), note);
    QFile::remove(path());
    pass(499ms);
    EXPECT_EQ(written(), std::nullopt);
    EXPECT_FALSE(view().saved());
    pass(1ms);
    EXPECT_EQ(written(), noteBytes);
    EXPECT_TRUE(view().saved());
    pass(2s);
    EXPECT_FALSE(view().saved());
}

TEST_F(MemoryViewTest, openingWithoutAFileWritesNone) {
    view().appear();
    EXPECT_EQ(view().memory(), QString{});
    pass(10s);
    EXPECT_EQ(written(), std::nullopt);
}

TEST_F(MemoryViewTest, aFileThatCanNotBeReadLeavesTheEditorEmptyAndIsLeftAlone) {
    const QByteArray latin1 =
        "Gr\xFC\xDF"
        "e";
    openOn(latin1);
    EXPECT_EQ(view().memory(), QString{});
    pass(10s);
    EXPECT_EQ(written(), latin1);
}

TEST_F(MemoryViewTest, aFileThatCanNotBeReadIsKeptWhateverIsTypedUntilSaveIsPressed) {
    for (const QByteArray& bytes : {QByteArray{"caf\xe9, north"}, QByteArray(MemoryStore::largestNoteBytes + 1, 'a')}) {
        openOn(bytes);
        EXPECT_FALSE(view().notice().isEmpty());
        view().setMemory(note);
        pass(10s);
        EXPECT_FALSE(view().saved());
        EXPECT_EQ(written(), bytes);

        view().pressSave();
        EXPECT_EQ(written(), noteBytes);
        EXPECT_TRUE(view().saved());
        EXPECT_TRUE(view().notice().isEmpty());
        view().setMemory(note.left(5));
        pass(500ms);
        EXPECT_EQ(written(), note.left(5).toUtf8()) << "from now on it is saved as ever";
    }
}

TEST_F(MemoryViewTest, aFileThatBecomesUnreadableUnderAnEditIsKeptUntilSaveIsPressed) {
    openOn(noteBytes);
    pass(5s);
    view().setMemory(note + u'!');
    write("\xff");
    pass(10s);
    EXPECT_EQ(written(), "\xff");
    EXPECT_EQ(view().memory(), note + u'!') << "what the user has written stays";
    EXPECT_FALSE(view().notice().isEmpty());
    EXPECT_FALSE(view().saved());
    view().pressSave();
    EXPECT_EQ(written(), (note + u'!').toUtf8());
    EXPECT_TRUE(view().notice().isEmpty());
}

TEST_F(MemoryViewTest, aFileThatBecomesUnreadableTakesWhatItHeldFromTheEditor) {
    openOn(noteBytes);
    write("\xff");
    pass(10s);
    EXPECT_EQ(written(), "\xff");
    EXPECT_EQ(view().memory(), QString{});
    EXPECT_FALSE(view().notice().isEmpty());
}

TEST_F(MemoryViewTest, aFileThatBecameUnreadableIsNotReplacedByAnEditThatWasLeftTooSoon) {
    openOn("old");
    view().setMemory(note);
    write("\xff");
    view().appear();
    pass(10s);
    EXPECT_EQ(written(), "\xff");
    EXPECT_EQ(view().memory(), QString{});
    EXPECT_FALSE(view().notice().isEmpty());
}

TEST_F(MemoryViewTest, aKeptFileOutlivesTheScreenThatIsLeft) {
    openOn("\xff");
    view().setMemory(note);
    view().appear();
    pass(10s);
    EXPECT_EQ(written(), "\xff");
    EXPECT_EQ(view().memory(), QString{});
    EXPECT_FALSE(view().notice().isEmpty());
}

TEST_F(MemoryViewTest, aFileThatIsNotThereOrIsMendedNeedsNoNotice) {
    view().appear();
    EXPECT_TRUE(view().notice().isEmpty());
    openOn("\xff");
    EXPECT_FALSE(view().notice().isEmpty());
    openOn(noteBytes);
    EXPECT_TRUE(view().notice().isEmpty());
    EXPECT_EQ(view().memory(), note);
}

TEST_F(MemoryViewTest, aWhitespaceOnlyFileStandsInTheEditorAndIsNotSent) {
    openOn(" \n\t\n");
    EXPECT_EQ(view().memory(), u" \n\t\n"_s);
    pass(500ms);
    EXPECT_EQ(written(), QByteArray{" \n\t\n"});

    SessionFixture fixture;
    fixture.memoryNote = MemoryStore::loadFrom(path());
    fixture.session().startSession();
    settle();
    ASSERT_FALSE(fixture.ws->sent.empty());
    EXPECT_EQ(std::get<StartSessionPayload>(fixture.ws->sent.back().value).callNotes, std::nullopt);
}

TEST_F(MemoryViewTest, aSavedNoteTravelsWithTheNextSession) {
    view().setMemory(note);
    view().pressSave();
    SessionFixture fixture;
    fixture.memoryNote = MemoryStore::loadFrom(path());
    fixture.session().startSession({.callNotes = u"Ask for budget"_s});
    settle();
    ASSERT_FALSE(fixture.ws->sent.empty());
    EXPECT_EQ(std::get<StartSessionPayload>(fixture.ws->sent.back().value).callNotes,
              u"Rep context:\n"_s + note + u"\n\nCall prep:\nAsk for budget"_s);
}

TEST_F(MemoryViewTest, aFileOverTheLimitShowsWholeAndIsCutAsSoonAsItIsChanged) {
    const QByteArray longNote(2300, 'n');
    openOn(longNote);
    EXPECT_EQ(view().memory().size(), 2300);
    EXPECT_EQ(view().counterText(), u"2300/2000"_s);
    EXPECT_EQ(view().counterColor(), u"orange"_s);
    pass(500ms);
    EXPECT_EQ(written(), longNote) << "nothing is lost by looking at it";
    view().setMemory(view().memory() + u'!');
    EXPECT_EQ(view().counterText(), u"2000/2000"_s);
    pass(500ms);
    EXPECT_EQ(written(), QByteArray(2000, 'n'));
}

TEST_F(MemoryViewTest, everyByteOfAFileThatIsOnlyLookedAtStays) {
    const QByteArray bytes =
        "\xEF\xBB\xBF"
        "North\r\nSouth\rEast\xC2\xA0West\n";
    openOn(bytes);
    pass(500ms);
    EXPECT_EQ(written(), bytes);
}

TEST_F(MemoryViewTest, openingAgainReadsAgain) {
    openOn("first");
    pass(5s);
    write("second");
    view().appear();
    EXPECT_EQ(view().memory(), u"second"_s);
    EXPECT_FALSE(view().saved());
}

TEST_F(MemoryViewTest, openingAgainTellsOfTheSameTextToo) {
    openOn("same");
    pass(5s);
    QSignalSpy changes{&view(), &MemoryView::memoryChanged};
    view().appear();
    EXPECT_GE(changes.count(), 1);
    pass(500ms);
    EXPECT_TRUE(view().saved()) << "a screen that opens on a text saves it";
}

TEST_F(MemoryViewTest, anEditIsSavedAfterTheScreenIsLeft) {
    // Leaving a screen tells the view state nothing.
    view().appear();
    view().setMemory(note);
    pass(500ms);
    EXPECT_EQ(written(), noteBytes);
}

TEST_F(MemoryViewTest, comingBackWithinHalfASecondKeepsTheEdit) {
    openOn("old");
    view().setMemory(note);
    view().appear();
    EXPECT_EQ(view().memory(), note);
    pass(500ms);
    EXPECT_EQ(written(), noteBytes);
}

TEST_F(MemoryViewTest, theBadgeOfAScreenThatWasLeftIsOver) {
    view().pressSave();
    view().appear();
    EXPECT_FALSE(view().saved());
    pass(1s);
    view().pressSave();
    pass(1s);
    EXPECT_TRUE(view().saved()) << "the first screen's timer is gone";
}

TEST_F(MemoryViewTest, theProgramsEndWithinHalfASecondLosesTheEdit) {
    view().setMemory(note);
    closeForGood();
    pass(5s);
    EXPECT_EQ(written(), std::nullopt);
}

TEST_F(MemoryViewTest, theFileIsNamedAsPeopleKnowIt) {
    EXPECT_EQ(view().fileText(), u"~/.config/corvellan/memory.md"_s);
}

}  // namespace

}  // namespace corvellan::test
