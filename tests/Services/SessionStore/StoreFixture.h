#pragma once

#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "Models/SessionRecord.h"

/// What the tests of the record store share.
namespace corvellan::test {

using namespace Qt::StringLiterals;

/// A moment, counted in seconds from one that is always the same.
[[nodiscard]] inline WallTime moment(std::int64_t seconds) {
    return WallTime{std::chrono::milliseconds{1'772'445'600'000 + seconds * 1000}};
}

/// A record that differs from others in its company and date alone.
[[nodiscard]] inline SessionRecord record(const QString& company, std::int64_t seconds = 0) {
    auto made = SessionRecord::make({.durationSecs = 60, .turns = 4, .companyName = company}, moment(seconds));
    return made;
}

/// A record with something in every field.
[[nodiscard]] inline SessionRecord fullRecord() {
    auto full = SessionRecord::make({.durationSecs = 3725,
                                     .turns = -9'007'199'254'740'993,
                                     .meddic = {.metrics = true, .champion = true},
                                     .disc = {DiscType::dominant, DiscConfidence::high, u"short \"answers\""_s},
                                     .coachingPoints = {u"One"_s, u""_s, u"Grüße \U0001F600"_s},
                                     .transcript = {u"[Mic] Hello"_s, u"[Audio] \n\t\\"_s, u"no prefix"_s},
                                     .scenario = u"price_push"_s,
                                     .wasTrainMode = true,
                                     .companyName = u"\ufeffÖrsted 'and' \"Co\";--"_s,
                                     .calendarEventId = u""_s,
                                     .callId = u"c-1"_s,
                                     .audience = AudienceType::coldCall},
                                    WallTime{std::chrono::milliseconds{1'772'445'600'123}});
    full.outcome = u"no such outcome"_s;
    full.feedbackRating = -1;
    full.meddicEvidence = std::vector<std::optional<QString>>{u"a"_s, std::nullopt, u""_s};
    return full;
}

[[nodiscard]] inline QStringList companies(const std::vector<SessionRecord>& records) {
    QStringList names;
    for (const auto& record : records)
        names << record.companyName.value_or(u"-"_s);
    return names;
}

/// A folder of its own for each test, and a path in it that nothing lies at.
class StoreFixture : public testing::Test {
protected:
    [[nodiscard]] QString path() const { return file(u"data/sessions.sqlite"_s); }
    [[nodiscard]] QString file(const QString& name) const { return m_folder.filePath(name); }
    [[nodiscard]] QStringList filesBesideStore() const {
        return QDir{m_folder.filePath(u"data"_s)}.entryList(QDir::Files, QDir::Name);
    }

    void makeFolder() const { QDir{}.mkpath(m_folder.filePath(u"data"_s)); }
    void writeFile(const QString& name, const QByteArray& bytes) const {
        QFile target{name};
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        ASSERT_EQ(target.write(bytes), bytes.size());
    }
    [[nodiscard]] static QByteArray bytesOf(const QString& name) {
        QFile source{name};
        EXPECT_TRUE(source.open(QIODevice::ReadOnly)) << name.toStdString();
        return source.readAll();
    }

    /// Runs statements on the file, past the store.
    void execute(const std::string& statements) const {
        makeFolder();
        SQLite::Database database{path().toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE};
        database.exec(statements);
    }
    [[nodiscard]] std::string ask(const std::string& query) const {
        SQLite::Database database{path().toStdString()};
        return database.execAndGet(query).getString();
    }

private:
    QTemporaryDir m_folder;
};

}  // namespace corvellan::test
