#include "MemoryStore.h"

#include <QDir>
#include <QFile>
#include <QStringDecoder>

#include "Base/Text.h"

using namespace Qt::StringLiterals;

namespace corvellan::MemoryStore {

QString filePath() {
    static const QString path = QDir::homePath() + u"/.config/corvellan/memory.md"_s;
    return path;
}

std::optional<QString> load() {
    return loadFrom(filePath());
}

std::optional<QString> loadFrom(const QString& path) {
    QFile file{path};
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QStringDecoder decode{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    QString note = decode(file.readAll());
    if (decode.hasError() || text::trimmed(note).isEmpty())
        return std::nullopt;
    return note;
}

}  // namespace corvellan::MemoryStore
