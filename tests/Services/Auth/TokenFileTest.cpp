#include "Services/Auth/TokenFile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace corvellan {

namespace {

using namespace Qt::StringLiterals;

const AuthTokens tokens{.accessToken = u"access"_s, .refreshToken = u"refresh"_s, .expiresAt = 1'772'445'600};

class TokenFileTest : public testing::Test {
protected:
    TokenFileTest() : m_oldMask(::umask(0)) {}
    ~TokenFileTest() override { ::umask(m_oldMask); }

    [[nodiscard]] QString path(const QString& name = u"auth.json"_s) const { return m_folder.filePath(name); }
    [[nodiscard]] TokenFile file() const { return TokenFile{path()}; }

    static void write(const QString& path, const QByteArray& bytes, mode_t mode = 0644) {
        QFile file{path};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
        file.close();
        ASSERT_EQ(::chmod(path.toLocal8Bit().constData(), mode), 0);
    }
    static QByteArray contents(const QString& path) {
        QFile file{path};
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
    }
    static mode_t mode(const QString& path) {
        struct stat status{};
        EXPECT_EQ(::stat(path.toLocal8Bit().constData(), &status), 0);
        return status.st_mode & 07777U;
    }
    [[nodiscard]] QStringList names() const {
        return QDir{m_folder.path()}.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
    mode_t m_oldMask;
};

const QByteArray written{R"({"access_token":"access","refresh_token":"refresh","expires_at":1772445600})"};

}  // namespace

TEST_F(TokenFileTest, liesBelowTheHomeDirectory) {
    EXPECT_EQ(TokenFile::defaultPath(), QDir::homePath() + u"/.config/corvellan/auth.json"_s);
}

TEST_F(TokenFileTest, isReadableForItsOwnerAloneWhateverTheMask) {
    file().save(tokens);
    EXPECT_EQ(contents(path()), written);
    EXPECT_EQ(mode(path()), 0600U);
    EXPECT_EQ(file().load(), tokens);
    // Nothing is left beside it.
    EXPECT_EQ(names(), QStringList{u"auth.json"_s});
}

TEST_F(TokenFileTest, narrowsAFileThatWasOpenToOthers) {
    for (const mode_t before : {0644U, 0666U, 0777U, 0640U, 0400U, 0000U}) {
        write(path(), "old", before);
        file().save(tokens);
        EXPECT_EQ(mode(path()), 0600U) << before;
        EXPECT_EQ(contents(path()), written) << before;
    }
}

TEST_F(TokenFileTest, replacesTheFileAsAWhole) {
    // Another name for the old file still reads the old text: it was not written over.
    write(path(), "old text");
    ASSERT_EQ(::link(path().toLocal8Bit().constData(), path(u"other"_s).toLocal8Bit().constData()), 0);
    file().save(tokens);
    EXPECT_EQ(contents(path(u"other"_s)), "old text");
    EXPECT_EQ(contents(path()), written);
}

TEST_F(TokenFileTest, makesTheFoldersOnTheWay) {
    const TokenFile deep{path(u"a/b/auth.json"_s)};
    deep.save(tokens);
    EXPECT_EQ(deep.load(), tokens);
}

TEST_F(TokenFileTest, readsNothingWithoutAFile) {
    EXPECT_EQ(file().load(), std::nullopt);
    EXPECT_EQ(TokenFile{path(u"none/auth.json"_s)}.load(), std::nullopt);
}

TEST_F(TokenFileTest, readsNothingFromATornFile) {
    for (qsizetype size = 0; size < written.size(); ++size) {
        write(path(), written.first(size));
        EXPECT_EQ(file().load(), std::nullopt) << size;
    }
    // The next one replaces it.
    file().save(tokens);
    EXPECT_EQ(file().load(), tokens);
}

TEST_F(TokenFileTest, readsNothingFromAFileThatIsTooLong) {
    write(path(), written + QByteArray(AuthTokens::maxFileBytes - written.size(), ' '));
    EXPECT_EQ(file().load(), tokens);
    write(path(), written + QByteArray(AuthTokens::maxFileBytes - written.size() + 1, ' '));
    EXPECT_EQ(file().load(), std::nullopt);
}

TEST_F(TokenFileTest, doesNotWaitForAPipe) {
    ASSERT_EQ(::mkfifo(path().toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(file().load(), std::nullopt);
    file().save(tokens);
    EXPECT_EQ(file().load(), tokens);
}

TEST_F(TokenFileTest, bearsAFolderInItsPlace) {
    ASSERT_TRUE(QDir{}.mkpath(path() + u"/inside"_s));
    EXPECT_EQ(file().load(), std::nullopt);
    file().save(tokens);
    file().remove();
    EXPECT_TRUE(QFileInfo::exists(path() + u"/inside"_s));
    EXPECT_EQ(names(), QStringList{u"auth.json"_s});
}

TEST_F(TokenFileTest, bearsAFolderThatCannotBeWritten) {
    // Not by its mode, which means nothing to root: a file stands where the folder should.
    write(path(u"blocked"_s), "a file");
    const TokenFile blocked{path(u"blocked/auth.json"_s)};
    blocked.save(tokens);
    EXPECT_EQ(blocked.load(), std::nullopt);
    blocked.remove();
    EXPECT_EQ(contents(path(u"blocked"_s)), "a file");
    EXPECT_EQ(names(), QStringList{u"blocked"_s});
}

TEST_F(TokenFileTest, writesWhatASymbolicLinkLeadsTo) {
    write(path(u"real.json"_s), "old");
    ASSERT_TRUE(QFile::link(u"real.json"_s, path()));
    file().save(tokens);
    EXPECT_TRUE(QFileInfo{path()}.isSymLink());
    EXPECT_EQ(contents(path(u"real.json"_s)), written);
    EXPECT_EQ(mode(path(u"real.json"_s)), 0600U);
    EXPECT_EQ(file().load(), tokens);
}

TEST_F(TokenFileTest, writesThroughALinkToNothingYet) {
    ASSERT_TRUE(QFile::link(path(u"second"_s), path()));
    ASSERT_TRUE(QFile::link(u"real.json"_s, path(u"second"_s)));
    file().save(tokens);
    EXPECT_TRUE(QFileInfo{path()}.isSymLink());
    EXPECT_EQ(contents(path(u"real.json"_s)), written);
    EXPECT_EQ(mode(path(u"real.json"_s)), 0600U);
}

TEST_F(TokenFileTest, removesWhatASymbolicLinkLeadsTo) {
    write(path(u"real.json"_s), written);
    ASSERT_TRUE(QFile::link(u"real.json"_s, path()));
    file().remove();
    EXPECT_FALSE(QFileInfo::exists(path(u"real.json"_s)));
    EXPECT_EQ(file().load(), std::nullopt);
}

TEST_F(TokenFileTest, bearsLinksInACircle) {
    ASSERT_TRUE(QFile::link(path(u"other"_s), path()));
    ASSERT_TRUE(QFile::link(path(), path(u"other"_s)));
    file().save(tokens);
    EXPECT_EQ(file().load(), std::nullopt);
    file().remove();
    EXPECT_EQ(names().size(), 2);
}

TEST_F(TokenFileTest, removesTheFile) {
    file().remove();
    file().save(tokens);
    file().remove();
    EXPECT_TRUE(names().isEmpty());
}

}  // namespace corvellan
