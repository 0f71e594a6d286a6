#pragma once

#include <gtest/gtest.h>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

/// What the tests of a session's way from its start to its end have in common.
namespace corvellan::test {

inline const Error refused = TransportError{QStringLiteral("Connection refused")};

/// The steps that close everything, in their order.
inline const CallLog fullCleanup{"audio.stopMic", "stt.disconnect", "systemAudio.stop", "systemStt.disconnect",
                                 "ws.disconnect"};

/// Collects what the status reads, one change after another.
inline void recordStatus(SessionViewModel& session, QStringList& into) {
    QObject::connect(&session, &SessionViewModel::statusTextChanged, &session,
                     [&] { into.append(session.statusText()); });
}

}  // namespace corvellan::test
