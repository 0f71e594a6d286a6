#pragma once

#include <QStringView>

struct UText;

namespace corvellan::text {

/// Walks the characters of a text: grapheme clusters, by ICU's break iterator. Only one at a time on
/// each thread, since the iterator below is the thread's own. The text must outlive the walk.
class Characters {
public:
    explicit Characters(QStringView text);
    ~Characters();
    Characters(const Characters&) = delete;
    Characters& operator=(const Characters&) = delete;

    /// The end of the next character in UTF-16 units; negative after the last.
    qsizetype nextEnd();

private:
    UText* m_text = nullptr;
};

}  // namespace corvellan::text
