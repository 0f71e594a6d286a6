#include "DesktopPermissionSource.h"

#include <QFile>
#include <utility>

#include "Base/Executor.h"
#include "MicrophoneVerdict.h"
#include "Platform/AudioInput.h"
#include "ScreenCaptureProbe.h"

using namespace Qt::StringLiterals;

namespace corvellan {

DesktopPermissionSource::DesktopPermissionSource(Executor& worker, AudioInputs& inputs, QDBusConnection sessionBus)
    : m_worker(worker),
      m_inputs(inputs),
      m_bus(std::move(sessionBus)) {}

QCoro::Task<CaptureAuthorization> DesktopPermissionSource::microphoneAuthorization() {
    const auto source = co_await m_worker.call([] { return readDefaultSource(); });
    co_return microphoneVerdict(source, confinement());
}

QCoro::Task<bool> DesktopPermissionSource::requestMicrophoneAccess() {
    const auto microphone = co_await m_inputs.open(AudioInputKind::microphone, {});
    co_return microphone.has_value();
}

QCoro::Task<std::expected<void, Error>> DesktopPermissionSource::shareableContent() {
    const auto output = co_await m_inputs.open(AudioInputKind::systemOutput, {});
    if (!output)
        co_return std::unexpected(output.error());
    switch (desktopSession()) {
    case DesktopSession::x11: co_return co_await m_worker.call(grabRootPixel);
    case DesktopSession::wayland: co_return co_await findScreenshotPortal(m_bus);
    }
    Q_UNREACHABLE();
}

Confinement confinement() {
    const bool isFlatpak = QFile::exists(u"/.flatpak-info"_s);
    const bool isSnap = !qEnvironmentVariableIsEmpty("SNAP_NAME");
    return isFlatpak || isSnap ? Confinement::sandboxed : Confinement::none;
}

}  // namespace corvellan
