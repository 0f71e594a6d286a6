#pragma once

#include <expected>
#include <QByteArray>
#include <QString>

#include "EntryReader.h"

/// The files that say whom the sandbox plays: JSON, with an object at the top.
namespace corvellan::sandbox {

/// In bytes.
inline constexpr qsizetype longestDataFile = 4 * 1024 * 1024;

/// The object at the top, to be read on, or a sentence on what is wrong.
[[nodiscard]] std::expected<EntryReader, QString> parseDataFile(const QByteArray& json);

/// The file's bytes, up to one more than `parseDataFile` takes.
[[nodiscard]] std::expected<QByteArray, QString> readDataFile(const QString& path);

/// The `Book` that a file holds.
template <typename Book>
[[nodiscard]] std::expected<Book, QString> loadBook(const QString& path) {
    const auto json = readDataFile(path);
    if (!json)
        return std::unexpected{json.error()};
    return Book::parse(*json);
}

/// The `Book` in the file of that name that comes with the program.
template <typename Book>
[[nodiscard]] Book shippedBook(const QString& name) {
    auto book = loadBook<Book>(QStringLiteral(":/sandbox/") + name);
    // A test reads it too; a build with a broken one is of no use.
    if (!book)
        qFatal("%s: %s", qPrintable(name), qPrintable(book.error()));
    return std::move(*book);
}

}  // namespace corvellan::sandbox
