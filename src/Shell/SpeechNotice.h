#pragma once

#include "Platform/Notifications.h"
#include "Platform/SpeechSynthesizer.h"

namespace corvellan {

/// Tells the user why a reply is not spoken, once in the program's life: it is shown all the same. Main
/// thread.
class SpeechNotice {
public:
    explicit SpeechNotice(NotificationCenter& notifications) : m_notifications(notifications) {}

    void tell(SpeechFailure failure);

private:
    NotificationCenter& m_notifications;
    bool m_isTold = false;
};

}  // namespace corvellan
