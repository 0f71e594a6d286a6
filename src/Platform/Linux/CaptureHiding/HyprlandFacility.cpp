#include "HyprlandFacility.h"

#include <array>

#include "Base/Tasks.h"
#include "HyprlandReplies.h"
#include "HyprlandSocket.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

/// How one generation of the compositor is told: `%1` is the window's address, `%2` the value.
struct Dialect {
    QLatin1StringView command;
    QLatin1StringView property;
};

/// The newest first. Each generation refuses the words of the others.
constexpr std::array dialects{
    Dialect{"/dispatch setprop address:%1 no_screen_share %2"_L1, "no_screen_share"_L1},
    // Configured in Lua, it takes no other language.
    Dialect{R"(/dispatch hl.dsp.window.set_prop({ window = "address:%1", prop = "no_screen_share", value = "%2" }))"_L1,
            "no_screen_share"_L1},
    Dialect{"/dispatch setprop address:%1 noscreenshare %2"_L1, "noscreenshare"_L1},
};

HidingAnswer failed(const QString& sentence) {
    return {CaptureVisibility::failed, sentence};
}

}  // namespace

HyprlandFacility::HyprlandFacility(QString socketPath, Clock& clock)
    : m_socketPath(std::move(socketPath)),
      m_clock(clock) {}

QString HyprlandFacility::offer() const {
    return u"Hyprland can leave this window out of screen sharing; others then see a black area in its place."_s;
}

QCoro::Task<HidingAnswer> HyprlandFacility::apply(HidingRequest request, std::stop_token stop) {
    const Addresses addresses = co_await findWindows(request, stop);
    if (!addresses)
        co_return failed(addresses.error().errorDescription());
    if (addresses->empty()) {
        if (!request.isHidden)
            co_return HidingAnswer{CaptureVisibility::visible, offer()};
        co_return failed(u"Hyprland does not list this window, so it could not be hidden."_s);
    }
    HidingAnswer answer;
    for (const QByteArray& address : *addresses) {
        answer = co_await applyTo(address, request.isHidden, stop);
        if (answer.visibility == CaptureVisibility::failed)
            break;
    }
    co_return answer;
}

QCoro::Task<HyprlandFacility::Addresses> HyprlandFacility::findWindows(HidingRequest request, std::stop_token stop) {
    const auto end = m_clock.now() + windowPatience;
    while (true) {
        const auto reply = co_await askHyprland(m_socketPath, "j/clients", m_clock, stop);
        if (!reply)
            co_return std::unexpected(reply.error());
        auto addresses = hyprland::windowAddresses(reply->bytes, request.processId, request.windowTitle);
        if (!addresses)
            co_return std::unexpected(TransportError{u"Hyprland's list of windows can't be read."_s});
        if (!addresses->empty() || !request.isHidden || m_clock.now() >= end)
            co_return std::move(*addresses);
        if (co_await sleep(m_clock, windowPollInterval, stop) == SleepEnd::interrupted)
            co_return std::unexpected(Error::cancelled());
    }
}

QCoro::Task<HidingAnswer> HyprlandFacility::applyTo(QByteArray address, bool isHidden, std::stop_token stop) {
    QString refusal;
    for (const Dialect& dialect : dialects) {
        const QString command =
            dialect.command.toString().arg(QString::fromLatin1(address), isHidden ? u"1"_s : u"unset"_s);
        const auto set = co_await askHyprland(m_socketPath, command.toLatin1(), m_clock, stop);
        if (!set)
            co_return failed(set.error().errorDescription());
        if (!hyprland::isOk(set->bytes)) {
            if (refusal.isEmpty())
                refusal = hyprland::excerpt(set->bytes);
            continue;
        }
        if (!isHidden)
            co_return HidingAnswer{CaptureVisibility::visible, offer()};
        // A compositor that says "ok" to anything would leave the user seen by everyone.
        const QByteArray question = "j/getprop address:" + address + ' ' + dialect.property.latin1();
        const auto read = co_await askHyprland(m_socketPath, question, m_clock, stop);
        if (!read)
            co_return failed(read.error().errorDescription());
        const auto value = hyprland::propertyValue(read->bytes, dialect.property.latin1());
        if (value == true)
            co_return HidingAnswer{CaptureVisibility::hidden,
                                   u"Hyprland has confirmed that this window is left out of screen sharing."_s};
        refusal = value ? u"another rule keeps the window visible"_s : hyprland::excerpt(read->bytes);
    }
    co_return failed(
        isHidden
            ? u"Hyprland did not hide this window (that needs version 0.50 or later). It answered: %1"_s.arg(refusal)
            : u"Hyprland did not show this window to captures again. It answered: %1"_s.arg(refusal));
}

}  // namespace corvellan
