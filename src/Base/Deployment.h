#pragma once

#include <QString>

/// The addresses and the version that a program was built with. A program links exactly one set of
/// them: the configured values, or the sandbox's.
namespace corvellan::deployment {

/// The coaching server's WebSocket URL, path "/ws".
[[nodiscard]] QString coachUrl();
/// The chat/briefings back-end: sign-in and REST.
[[nodiscard]] QString chatUrl();
/// The transcription provider's realtime URL, for when the coaching server names none.
[[nodiscard]] QString sttUrl();
/// The CRM's web address.
[[nodiscard]] QString crmUrl();
/// The CRM portal's identifier in web links.
[[nodiscard]] QString crmPortal();
/// Where the browser extension is to be had.
[[nodiscard]] QString extensionUrl();
/// Where new versions are to be had.
[[nodiscard]] QString downloadUrl();
/// The short version string.
[[nodiscard]] QString version();
/// The build number.
[[nodiscard]] QString build();

}  // namespace corvellan::deployment
