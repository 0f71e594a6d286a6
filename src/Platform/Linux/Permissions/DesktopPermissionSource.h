#pragma once

#include <QDBusConnection>

#include "Platform/Permissions.h"

namespace corvellan {

class AudioInputs;
class Executor;

/// A Linux desktop keeps no list of what a program may record: whether it works is what there is to know. So
/// the microphone is "authorized" when the sound server has one, and the screen when a capture succeeds.
///
/// - Microphone: a default source that is no monitor. No source means "denied", since the user must do
///   something about it; no server means "not determined"; a server that refuses this program, or none in
///   sight from inside a Flatpak or Snap, means "restricted".
/// - Screen: the output's sound can be recorded, and a pixel of the screen can be taken. On Wayland it is only
///   seen to that the desktop has a screenshot portal: to ask it would put a question before the user at every
///   start.
///
/// Nothing of what is recorded is kept or looked at.
class DesktopPermissionSource final : public PermissionSource {
public:
    /// \param worker where short waits for the sound server and the display are spent.
    /// Both outlive it; calls that are under way must have ended before it goes.
    DesktopPermissionSource(Executor& worker, AudioInputs& inputs, QDBusConnection sessionBus);

    QCoro::Task<CaptureAuthorization> microphoneAuthorization() override;
    QCoro::Task<bool> requestMicrophoneAccess() override;
    QCoro::Task<std::expected<void, Error>> shareableContent() override;

private:
    Executor& m_worker;
    AudioInputs& m_inputs;
    QDBusConnection m_bus;
};

/// What stands round the program: nothing, or a sandbox that hides what it does not grant.
enum class Confinement { none, sandboxed };

[[nodiscard]] Confinement confinement();

}  // namespace corvellan
