#include "Views/History/ReportFile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "HistoryRecords.h"
#include "Views/History/SessionReport.h"

namespace corvellan::test {

namespace {

SessionRecord recordOf(const std::optional<QString>& company) {
    return SessionRecord::make({.companyName = company}, noonish);
}

}  // namespace

TEST(ReportFileTest, theNameTellsDayTimeAndCompany) {
    struct Row {
        std::optional<QString> company;
        QString name;
    };
    for (const Row& row : {
             Row{u"Nordwind"_s, u"Session 2026-03-02 11.00 Nordwind.md"_s},
             Row{std::nullopt, u"Session 2026-03-02 11.00.md"_s},
             Row{u"../../etc/passwd"_s, u"Session 2026-03-02 11.00 etc passwd.md"_s},
             Row{u"A/B \"C\"\n$(D) \\"_s, u"Session 2026-03-02 11.00 A B C D.md"_s},
             Row{u"Müller & Söhne"_s, u"Session 2026-03-02 11.00 Müller Söhne.md"_s},
             Row{u"///"_s, u"Session 2026-03-02 11.00.md"_s},
             Row{QString{300, u'x'}, u"Session 2026-03-02 11.00 "_s + QString{40, u'x'} + u".md"_s},
         })
        EXPECT_EQ(reportFileName(recordOf(row.company), berlin()), row.name);
}

TEST(ReportFileTest, theFileHoldsTheReportForTheUserAlone) {
    const QTemporaryDir folder;
    const auto record = recordOf(u"Nordwind"_s);
    const auto path = saveReport(folder.filePath(u"new/folder"_s), record, berlin());
    ASSERT_TRUE(path.has_value());
    QFile file{*path};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()), sessionShareText(record, berlin()));
    EXPECT_FALSE(file.permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther));
}

TEST(ReportFileTest, aFileThatIsThereStays) {
    const QTemporaryDir folder;
    const auto record = recordOf(std::nullopt);
    const auto first = saveReport(folder.path(), record, berlin());
    const auto second = saveReport(folder.path(), record, berlin());
    ASSERT_TRUE(first && second);
    EXPECT_EQ(QFileInfo{*second}.fileName(), u"Session 2026-03-02 11.00 2.md"_s);
    EXPECT_EQ(QDir{folder.path()}.entryList(QDir::Files).size(), 2);
}

TEST(ReportFileTest, whatCannotBeWrittenIsAnError) {
    const QTemporaryDir folder;
    QFile inTheWay{folder.filePath(u"file"_s)};
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const auto path = saveReport(folder.filePath(u"file/below"_s), recordOf(std::nullopt), berlin());
    ASSERT_FALSE(path.has_value());
    EXPECT_FALSE(path.error().errorDescription().isEmpty());
}

}  // namespace corvellan::test
