#include "Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "Characters.h"

namespace corvellan::text {

namespace {

bool isSpace(QChar character) {
    // U+0085 and the like are separators of lines for people, though not white space for Qt.
    return character.isSpace() || character == QChar{0x85};
}

}  // namespace

qsizetype count(QStringView text) {
    Characters characters{text};
    qsizetype result = 0;
    while (characters.nextEnd() >= 0)
        ++result;
    return result;
}

QString prefix(QStringView text, qsizetype characters) {
    if (text.size() <= characters)
        return text.toString();
    Characters walker{text};
    qsizetype end = 0;
    for (qsizetype i = 0; i < characters; ++i) {
        const auto next = walker.nextEnd();
        if (next < 0)
            return text.toString();
        end = next;
    }
    return text.first(end).toString();
}

QString upperFirst(QStringView text) {
    if (text.isEmpty())
        return {};
    const auto first = prefix(text, 1);
    return first.toUpper() + text.sliced(first.size()).toString();
}

QString trimmed(QStringView text) {
    while (!text.isEmpty() && isSpace(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isSpace(text.back()))
        text.chop(1);
    return text.toString();
}

bool isBlank(QStringView text) {
    return std::ranges::all_of(text, [](QChar character) { return character == u' ' || character == u'\t'; });
}

std::optional<double> number(QStringView text) {
    const auto bytes = text.toUtf8();
    const char* begin = bytes.constData();
    const char* const end = begin + bytes.size();
    // Only a minus is known to the conversion, and after a plus it must not take one.
    if (begin != end && *begin == '+') {
        ++begin;
        if (begin != end && *begin == '-')
            return std::nullopt;
    }
    double value = 0;
    const auto read = std::from_chars(begin, end, value);
    if (read.ec != std::errc{} || read.ptr != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

QString fixed(double value, int decimals) {
    std::array<char, 400> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals);
    return QString::fromLatin1(digits.data(), end.ptr - digits.data());
}

}  // namespace corvellan::text
