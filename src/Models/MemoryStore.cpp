#include "MemoryStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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
    auto note = read(path);
    if (note && text::trimmed(*note).isEmpty())
        note.reset();
    return note;
}

std::optional<QString> read(const QString& path) {
    // A pipe in its place would keep its reader waiting.
    QFile file{path};
    if (!QFileInfo{path}.isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.read(largestNoteBytes + 1);
    if (bytes.size() > largestNoteBytes)
        return std::nullopt;
    // A byte-order mark is part of the text: without the second flag it would be dropped.
    QStringDecoder decode{QStringDecoder::Utf8,
                          QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom};
    QString note = decode(bytes);
    if (decode.hasError())
        return std::nullopt;
    return note;
}

}  // namespace corvellan::MemoryStore
