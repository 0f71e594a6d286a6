#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "Models/MemoryStore.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

class MemoryStoreTest : public testing::Test {
protected:
    [[nodiscard]] QString path() const { return m_folder.filePath(u"memory.md"_s); }

    std::optional<QString> loadAfterWriting(const QByteArray& bytes) const {
        QFile file{path()};
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        return MemoryStore::loadFrom(path());
    }

private:
    QTemporaryDir m_folder;
};

}  // namespace

TEST_F(MemoryStoreTest, theNoteLiesBelowTheHomeDirectory) {
    EXPECT_EQ(MemoryStore::filePath(), QDir::homePath() + u"/.config/corvellan/memory.md"_s);
}

TEST_F(MemoryStoreTest, givesTheTextAsItStands) {
    EXPECT_EQ(loadAfterWriting("  North, public sector\n\n"), u"  North, public sector\n\n"_s);
    EXPECT_EQ(loadAfterWriting("Gr\xC3\xBC\xC3\x9F"
                               "e \xF0\x9F\x98\x80"),
              u"Grüße \U0001F600"_s);
}

TEST_F(MemoryStoreTest, doesNotCutALongNote) {
    EXPECT_EQ(loadAfterWriting(QByteArray(5000, 'n'))->size(), 5000);
}

TEST_F(MemoryStoreTest, keepsAByteOrderMark) {
    EXPECT_EQ(loadAfterWriting("\xEF\xBB\xBFNorth"), u"\uFEFFNorth"_s);
}

TEST_F(MemoryStoreTest, givesANoteOfTheLargestSizeWholeAndNoLargerOne) {
    EXPECT_EQ(loadAfterWriting(QByteArray(MemoryStore::largestNoteBytes, 'n'))->size(), MemoryStore::largestNoteBytes);
    EXPECT_EQ(loadAfterWriting(QByteArray(MemoryStore::largestNoteBytes + 1, 'n')), std::nullopt);
}

TEST_F(MemoryStoreTest, aPipeInItsPlaceGivesNothingAndIsNotWaitedFor) {
    ASSERT_EQ(::mkfifo(path().toUtf8().constData(), 0600), 0);
    EXPECT_EQ(MemoryStore::loadFrom(path()), std::nullopt);
}

TEST_F(MemoryStoreTest, aLinkIsFollowed) {
    loadAfterWriting("North");
    const QString link = path() + u".link"_s;
    ASSERT_TRUE(QFile::link(path(), link));
    EXPECT_EQ(MemoryStore::loadFrom(link), u"North"_s);
}

TEST_F(MemoryStoreTest, aMissingFileGivesNothing) {
    EXPECT_EQ(MemoryStore::loadFrom(path()), std::nullopt);
    EXPECT_EQ(MemoryStore::read(path()), std::nullopt);
}

TEST_F(MemoryStoreTest, whoeverEditsTheNoteReadsWhiteSpaceAsItStands) {
    loadAfterWriting(" \n\t");
    EXPECT_EQ(MemoryStore::read(path()), u" \n\t"_s);
    loadAfterWriting("");
    EXPECT_EQ(MemoryStore::read(path()), QString{});
    loadAfterWriting("\xFF");
    EXPECT_EQ(MemoryStore::read(path()), std::nullopt);
}

TEST_F(MemoryStoreTest, aFolderInItsPlaceGivesNothing) {
    QDir{}.mkpath(path());
    EXPECT_EQ(MemoryStore::loadFrom(path()), std::nullopt);
}

TEST_F(MemoryStoreTest, whiteSpaceAloneGivesNothing) {
    for (const auto* bytes : {"", " ", "\n\n", " \t\r\n ", "\xC2\xA0", "\xE2\x80\xA8\xE3\x80\x80"})
        EXPECT_EQ(loadAfterWriting(bytes), std::nullopt) << bytes;
}

TEST_F(MemoryStoreTest, bytesThatAreNoUtf8GiveNothing) {
    for (const auto* bytes : {"abc \xFF def", "\xC3(", "cut off \xC3", "\xED\xA0\x80", "Caf\xE9"})
        EXPECT_EQ(loadAfterWriting(bytes), std::nullopt) << bytes;
}

}  // namespace corvellan
