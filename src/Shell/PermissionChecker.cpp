#include "PermissionChecker.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace corvellan {

PermissionChecker::PermissionChecker(PermissionSource& source, SystemSettings& settings, AlertPresenter& alerts)
    : m_source(source),
      m_settings(settings),
      m_alerts(alerts) {}

QCoro::Task<PermissionState> PermissionChecker::check() {
    PermissionState state;
    state.microphone = co_await checkMicrophone();
    state.screenRecording = co_await checkScreenRecording();
    co_return state;
}

QCoro::Task<PermissionStatus> PermissionChecker::checkMicrophone() {
    switch (co_await m_source.microphoneAuthorization()) {
    case CaptureAuthorization::notDetermined: co_return PermissionStatus::unknown;
    case CaptureAuthorization::restricted: co_return PermissionStatus::denied;
    case CaptureAuthorization::denied: co_return PermissionStatus::denied;
    case CaptureAuthorization::authorized: co_return PermissionStatus::granted;
    }
    // A platform may come to know more answers than these.
    co_return PermissionStatus::unknown;
}

QCoro::Task<PermissionStatus> PermissionChecker::checkScreenRecording() {
    const auto content = co_await m_source.shareableContent();
    co_return content ? PermissionStatus::granted : PermissionStatus::denied;
}

QCoro::Task<bool> PermissionChecker::requestMicrophone() {
    return m_source.requestMicrophoneAccess();
}

QCoro::Task<void> PermissionChecker::showMissingPermissionsAlert(PermissionState state) {
    Alert alert{.messageText = u"Permissions Required"_s,
                .informativeText = informativeText(state),
                .buttonTitles = {u"Open System Settings"_s, u"Later"_s}};
    const auto pressed = co_await m_alerts.runModal(std::move(alert));
    if (pressed != 0)
        co_return;
    // One page only: with both missing, the screen's turn comes at the next start.
    m_settings.openPrivacyPane(state.microphone != PermissionStatus::granted ? PrivacyPane::microphone
                                                                             : PrivacyPane::screenCapture);
}

QString PermissionChecker::informativeText(PermissionState state) {
    QStringList missing;
    const auto add = [&missing](const QString& item) {
        missing.append(QString::number(missing.size() + 1) + u". "_s + item);
    };
    if (state.microphone != PermissionStatus::granted)
        add(u"Microphone — captures your voice during calls"_s);
    if (state.screenRecording != PermissionStatus::granted)
        add(u"Screen & System Audio Recording — captures customer voice from Zoom/Meet/Teams"_s);
    return u"Corvellan Bram needs the following permissions:\n\n"_s + missing.join(u'\n') +
           u"\n\nWithout these, coaching will be limited."_s;
}

QString PermissionChecker::statusText(PermissionStatus status) {
    switch (status) {
    case PermissionStatus::granted: return u"granted"_s;
    case PermissionStatus::denied: return u"denied"_s;
    case PermissionStatus::unknown: return u"unknown"_s;
    }
    Q_UNREACHABLE();
}

}  // namespace corvellan
