#pragma once

#include <QByteArrayView>
#include <QString>

namespace corvellan {

/// Text from UTF-8, a leading byte-order mark included: Qt's own conversion takes it away, but inside
/// a message or a column it is a character like any other.
[[nodiscard]] inline QString textFromUtf8(QByteArrayView bytes) {
    constexpr QByteArrayView mark{"\xEF\xBB\xBF"};
    qsizetype marks = 0;
    while (bytes.startsWith(mark)) {
        bytes = bytes.sliced(mark.size());
        ++marks;
    }
    auto text = QString::fromUtf8(bytes);
    return marks == 0 ? text : QString{marks, QChar::ByteOrderMark} + text;
}

}  // namespace corvellan
