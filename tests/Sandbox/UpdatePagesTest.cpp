#include <gtest/gtest.h>

#include <QXmlStreamReader>

#include "SandboxFixture.h"

namespace corvellan::test {

namespace {

/// What the feed's one entry says, read as XML.
struct Entry {
    QString version;
    QString url;
    int count = 0;
};

Entry entryOf(const QByteArray& feed) {
    const QString sparkle = u"http://www.andymatuschak.org/xml-namespaces/sparkle"_s;
    Entry entry;
    QXmlStreamReader reader{feed};
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement || reader.name() != u"enclosure")
            continue;
        ++entry.count;
        entry.version = reader.attributes().value(sparkle, u"shortVersionString"_s).toString();
        entry.url = reader.attributes().value(u"url"_s).toString();
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString() << "\n" << feed.toStdString();
    return entry;
}

using UpdatePagesTest = SandboxFixture;

}  // namespace

TEST_F(UpdatePagesTest, announceTheVersionOfThisBuildByThemselves) {
    start();
    const Entry entry = entryOf(getBody(u"/appcast.xml"_s));
    EXPECT_EQ(entry.count, 1);
    EXPECT_EQ(entry.version, QStringLiteral(PROGRAM_VERSION));
    EXPECT_EQ(entry.url, u"http://127.0.0.1:%1/download"_s.arg(box->coachPort()));
}

TEST_F(UpdatePagesTest, announceTheVersionThatIsAskedFor) {
    start({.feedVersion = u"9.0"_s});
    // As the program itself reads it: this text, and no XML.
    EXPECT_TRUE(getBody(u"/appcast.xml"_s).contains("sparkle:shortVersionString=\"9.0\""));
    EXPECT_TRUE(getBody(u"/download"_s).contains("<h1>Corvellan Bram 9.0</h1>"));
}

TEST_F(UpdatePagesTest, stayXmlWhateverTheVersionIs) {
    const QString version = u"1 < 2 & \"3\" '4' %2 \u00e9"_s;
    start({.feedVersion = version});
    EXPECT_EQ(entryOf(getBody(u"/appcast.xml"_s)).version, version);
    EXPECT_TRUE(getBody(u"/download"_s).contains("<h1>Corvellan Bram 1 &lt; 2 "));
}

}  // namespace corvellan::test
