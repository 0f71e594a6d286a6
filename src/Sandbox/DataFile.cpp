#include "DataFile.h"

#include <QFile>
#include <QJsonDocument>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Bad = std::unexpected<QString>;

}  // namespace

std::expected<EntryReader, QString> parseDataFile(const QByteArray& json) {
    if (json.size() > longestDataFile)
        return Bad{u"it is longer than 4 MiB"_s};
    QJsonParseError problem;
    const auto document = QJsonDocument::fromJson(json, &problem);
    if (problem.error != QJsonParseError::NoError)
        return Bad{u"at byte %1: %2"_s.arg(problem.offset).arg(problem.errorString())};
    return EntryReader{document.isObject() ? QJsonValue{document.object()} : QJsonValue{}, u"the file"_s};
}

std::expected<QByteArray, QString> readDataFile(const QString& path) {
    QFile file{path};
    if (!file.open(QIODevice::ReadOnly))
        return Bad{u"cannot read it: %1"_s.arg(file.errorString())};
    return file.read(longestDataFile + 1);
}

}  // namespace corvellan::sandbox
