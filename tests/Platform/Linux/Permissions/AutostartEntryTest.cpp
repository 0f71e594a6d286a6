#include "Platform/Linux/Permissions/AutostartEntry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace corvellan {
namespace {

QString programOf(const QByteArray& exec) {
    const auto entry = parseAutostartEntry("[Desktop Entry]\nExec=" + exec + "\n");
    return entry ? entry->program : u"(no entry)"_s;
}

bool isHidden(const QByteArray& line) {
    return parseAutostartEntry("[Desktop Entry]\n" + line + "\n").value().isHidden;
}

bool isSwitchedOn(const QByteArray& line) {
    return parseAutostartEntry("[Desktop Entry]\n" + line + "\n").value().isSwitchedOn;
}

TEST(AutostartEntryTest, theEntryOfAnOrdinaryPathReadsLikeThis) {
    EXPECT_EQ(autostartEntryFor(u"/usr/bin/corvellan-bram"_s),
              "[Desktop Entry]\n"
              "Type=Application\n"
              "Name=Corvellan Bram\n"
              "Comment=Coaching during live calls\n"
              "Icon=com.teskara.CorvellanBram\n"
              "Exec=\"/usr/bin/corvellan-bram\"\n"
              "TryExec=/usr/bin/corvellan-bram\n"
              "Terminal=false\n"
              "X-GNOME-Autostart-enabled=true\n");
}

TEST(AutostartEntryTest, pathsAreQuotedAndEscapedAndPercentIsDoubled) {
    const auto lines = autostartEntryFor(u"/opt/50% \"off\" $now `a\\b`/bram"_s).split('\n');
    EXPECT_TRUE(lines.contains(R"(Exec="/opt/50%% \\"off\\" \\$now \\`a\\\\b\\`/bram")")) << lines.join('\n').data();
    EXPECT_TRUE(lines.contains(R"(TryExec=/opt/50% "off" $now `a\\b`/bram)")) << lines.join('\n').data();
}

TEST(AutostartEntryTest, whatIsWrittenIsReadBack) {
    for (const QString& path :
         {u"/usr/bin/bram"_s, u"/home/Jörg Müller/bram"_s, u"/a/100%/b"_s, u"/a/%%f %u/b"_s, u"/a/\"quoted\"/b"_s,
          u"/a/$HOME/`b`"_s, u"/a/back\\slash\\\\es/b"_s, u"/a/two\nlines\tand a tab\r/b"_s, u"/ends with a blank "_s,
          u"/ends with a form feed\f"_s, u"/and with a wide blank\u3000"_s, u"/日本語/\U0001F600"_s, u"/a;b#c[d]"_s}) {
        const auto entry = parseAutostartEntry(autostartEntryFor(path));
        ASSERT_TRUE(entry) << path.toStdString();
        EXPECT_EQ(entry->program, path);
        EXPECT_EQ(entry->tryExec, path);
        EXPECT_FALSE(entry->isHidden);
        EXPECT_TRUE(entry->isSwitchedOn);
        EXPECT_THAT(entry->onlyShowIn, IsEmpty());
        EXPECT_THAT(entry->notShowIn, IsEmpty());
    }
}

TEST(AutostartEntryTest, theHidingEntryHides) {
    const auto entry = parseAutostartEntry(hidingAutostartEntry());
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->isHidden);
}

TEST(AutostartEntryTest, readsTheFirstWordOfExec) {
    EXPECT_EQ(programOf("bram"), u"bram"_s);
    EXPECT_EQ(programOf("bram --flag %U"), u"bram"_s);
    EXPECT_EQ(programOf("  /opt/bram\t-x"), u"/opt/bram"_s);
    EXPECT_EQ(programOf("\"/opt/with blank/bram\" -x"), u"/opt/with blank/bram"_s);
    EXPECT_EQ(programOf("/opt/50%%/bram"), u"/opt/50%/bram"_s);
    EXPECT_EQ(programOf(""), u""_s);
    EXPECT_EQ(programOf("\"\""), u""_s);
    // Escaped once only, as people do by hand.
    EXPECT_EQ(programOf(R"("/opt/\"a\"/bram")"), u"/opt/\"a\"/bram"_s);
}

TEST(AutostartEntryTest, aQuoteThatIsNeverClosedNamesNoProgram) {
    EXPECT_EQ(programOf("\"/opt/bram"), u""_s);
    EXPECT_EQ(programOf("\"/opt/bram\\"), u""_s);
    EXPECT_EQ(programOf("\""), u""_s);
}

TEST(AutostartEntryTest, onlyTrueHidesAndOnlyFalseSwitchesOff) {
    EXPECT_TRUE(isHidden("Hidden=true"));
    EXPECT_TRUE(isHidden("Hidden = true "));
    EXPECT_TRUE(isHidden("Hidden=1"));
    for (const auto* line : {"Hidden=false", "Hidden=0", "Hidden=", "Hidden=yes", "Hidden", "#Hidden=true", "Name=x"})
        EXPECT_FALSE(isHidden(line)) << line;
    EXPECT_FALSE(isSwitchedOn("X-GNOME-Autostart-enabled=false"));
    EXPECT_FALSE(isSwitchedOn("X-GNOME-Autostart-enabled=0"));
    for (const auto* line : {"X-GNOME-Autostart-enabled=true", "X-GNOME-Autostart-enabled=", "Name=x"})
        EXPECT_TRUE(isSwitchedOn(line)) << line;
}

TEST(AutostartEntryTest, readsTheDesktopsThatItIsFor) {
    const auto entry = parseAutostartEntry("[Desktop Entry]\nOnlyShowIn=GNOME;KDE;\nNotShowIn=XFCE\n");
    ASSERT_TRUE(entry);
    EXPECT_THAT(entry->onlyShowIn, ElementsAre(u"GNOME"_s, u"KDE"_s));
    EXPECT_THAT(entry->notShowIn, ElementsAre(u"XFCE"_s));
}

TEST(AutostartEntryTest, otherGroupsAreNotRead) {
    const auto entry = parseAutostartEntry(
        "Hidden=true\n[Desktop Action x]\nHidden=true\nExec=other\n"
        "[Desktop Entry]\r\nExec=bram\r\n[Desktop Action y]\nHidden=true\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->program, u"bram"_s);
    EXPECT_FALSE(entry->isHidden);
}

TEST(AutostartEntryTest, ofAKeyThatComesTwiceTheLastCounts) {
    EXPECT_EQ(programOf("first\nExec=second"), u"second"_s);
}

TEST(AutostartEntryTest, whatIsNoDesktopEntryIsNone) {
    for (const QByteArray& bytes : {QByteArray{}, QByteArray{"Exec=bram"}, QByteArray{"[Desktop Entr"},
                                    QByteArray{"[Desktop Entry]\nName=\xFF\xFE"}, QByteArray(1000, '\0'),
                                    QByteArray(largestAutostartEntryBytes + 1, '[')})
        EXPECT_FALSE(parseAutostartEntry(bytes)) << bytes.left(40).toStdString();
}

TEST(AutostartEntryTest, anEmptyEntryNamesNoProgram) {
    const auto entry = parseAutostartEntry("[Desktop Entry]");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->program, u""_s);
    EXPECT_EQ(entry->tryExec, std::nullopt);
}

}  // namespace
}  // namespace corvellan
