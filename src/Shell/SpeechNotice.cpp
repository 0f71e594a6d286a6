#include "SpeechNotice.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

QString remedy(SpeechFailure failure) {
    switch (failure) {
    case SpeechFailure::noEngine:
        return u"No speech engine works on this computer. Install the package espeak-ng; until then replies are shown only."_s;
    case SpeechFailure::noSound:
        return u"The computer's sound service does not play them. Check the sound settings; until then replies are shown only."_s;
    }
    Q_UNREACHABLE();
}

}  // namespace

void SpeechNotice::tell(SpeechFailure failure) {
    if (std::exchange(m_isTold, true))
        return;
    m_notifications.add({.identifier = u"speech"_s, .title = u"Replies are not spoken"_s, .body = remedy(failure)});
}

}  // namespace corvellan
