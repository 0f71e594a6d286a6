#include "Characters.h"

#include <unicode/brkiter.h>
#include <unicode/utext.h>

#include <memory>

namespace corvellan::text {

namespace {

/// One a thread: making one costs more than its use.
icu::BreakIterator& iterator() {
    thread_local const std::unique_ptr<icu::BreakIterator> shared = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made{
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status)};
        Q_ASSERT(U_SUCCESS(status));
        return made;
    }();
    return *shared;
}

}  // namespace

Characters::Characters(QStringView text) {
    UErrorCode status = U_ZERO_ERROR;
    m_text = utext_openUChars(nullptr, reinterpret_cast<const UChar*>(text.utf16()), text.size(), &status);
    iterator().setText(m_text, status);
}

Characters::~Characters() {
    utext_close(m_text);
}

qsizetype Characters::nextEnd() {
    return iterator().next();
}

}  // namespace corvellan::text
