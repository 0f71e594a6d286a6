#include "FormFields.h"

#include <cctype>
#include <QList>
#include <QStringDecoder>

namespace corvellan::sandbox {

namespace {

std::optional<QString> decoded(QByteArray text) {
    text.replace('+', ' ');
    for (qsizetype at = text.indexOf('%'); at >= 0; at = text.indexOf('%', at + 1)) {
        const auto isDigit = [&](qsizetype i) {
            return i < text.size() && std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
        };
        if (!isDigit(at + 1) || !isDigit(at + 2))
            return std::nullopt;
    }
    QStringDecoder decode{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    QString result = decode(QByteArray::fromPercentEncoding(text));
    return decode.hasError() ? std::nullopt : std::optional{std::move(result)};
}

}  // namespace

std::optional<FormFields> parseForm(const QByteArray& bytes) {
    if (bytes.size() > longestForm)
        return std::nullopt;
    FormFields fields;
    for (const auto& item : bytes.split('&')) {
        if (item.isEmpty())
            continue;
        const qsizetype equals = item.indexOf('=');
        const auto name = decoded(equals < 0 ? item : item.first(equals));
        const auto value = decoded(equals < 0 ? QByteArray{} : item.sliced(equals + 1));
        if (!name || !value || fields.contains(*name))
            return std::nullopt;
        fields.insert(*name, *value);
    }
    return fields;
}

}  // namespace corvellan::sandbox
