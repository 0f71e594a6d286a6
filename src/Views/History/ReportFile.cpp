#include "ReportFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTimeZone>

#include "SessionReport.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

// File systems count bytes, at most 255; a character of four bytes leaves room for the rest of the name.
constexpr qsizetype longestCompany = 40;
constexpr int mostNumbers = 999;

/// Letters, digits and blanks alone: anything else may mean something to a shell, a file system or a mail program.
QString plain(const QString& name) {
    QString plain;
    for (const QChar character : name.left(longestCompany))
        plain += character.isLetterOrNumber() ? character : u' ';
    return plain.simplified();
}

}  // namespace

QString reportFileName(const SessionRecord& record, const DateStyle& style) {
    QTimeZone zone{style.zone.toLatin1()};
    if (!zone.isValid())
        zone = QTimeZone::utc();
    const auto date = QDateTime::fromMSecsSinceEpoch(record.createdDate.time_since_epoch().count(), zone);
    QString name = u"Session "_s + date.toString(u"yyyy-MM-dd HH.mm"_s);
    if (const QString company = plain(record.companyName.value_or(QString{})); !company.isEmpty())
        name += u' ' + company;
    return name + u".md"_s;
}

std::expected<QString, Error> saveReport(const QString& folder, const SessionRecord& record, const DateStyle& style) {
    const QDir target{folder};
    const QString name = reportFileName(record, style);
    const QByteArray bytes = sessionShareText(record, style).toUtf8();
    target.mkpath(u"."_s);
    QString failure;
    for (int number = 1; number <= mostNumbers; ++number) {
        QString numbered = name;
        if (number > 1)
            numbered.insert(name.size() - 3, u" %1"_s.arg(number));
        QString path = target.filePath(numbered);
        QFile file{path};
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner)) {
            failure = file.errorString();
            if (file.exists())
                continue;
            break;
        }
        if (file.write(bytes) == bytes.size() && file.flush())
            return path;
        failure = file.errorString();
        file.remove();
        break;
    }
    return std::unexpected<Error>{TransportError{failure}};
}

}  // namespace corvellan
