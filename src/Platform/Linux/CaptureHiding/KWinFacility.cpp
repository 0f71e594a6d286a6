#include "KWinFacility.h"

#include <array>
#include <QDBusPendingCallWatcher>
#include <QRandomGenerator>
#include <QTemporaryFile>

#include "KWinReport.h"
#include "KWinScript.h"
#include "Platform/Linux/EventWait.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

QDBusMessage method(const QString& path, const QString& interfaceName, const QString& name) {
    auto message = QDBusMessage::createMethodCall(u"org.kde.KWin"_s, path, interfaceName, name);
    message.setAutoStartService(false);
    return message;
}

QString randomToken() {
    std::array<quint32, 4> words{};
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    return QString::fromLatin1(
        QByteArray::fromRawData(reinterpret_cast<const char*>(words.data()), sizeof words).toHex());
}

HidingAnswer answerTo(const HidingRequest& request, const QString& offer, const QString& report) {
    if (report == u"done"_s)
        return request.isHidden
                   ? HidingAnswer{CaptureVisibility::hidden,
                                  u"KWin has confirmed that this window is left out of screenshots and recordings."_s}
                   : HidingAnswer{CaptureVisibility::visible, offer};
    if (report == u"unsupported"_s)
        return {request.isHidden ? CaptureVisibility::unsupported : CaptureVisibility::visible,
                u"This version of KWin can't hide windows from screen sharing; from Plasma 6.6 on it can."_s};
    if (report == u"refused"_s)
        return {CaptureVisibility::failed, u"KWin did not keep the setting: a window rule of yours says otherwise."_s};
    if (report == u"missing"_s && !request.isHidden)
        return {CaptureVisibility::visible, offer};
    if (report == u"missing"_s)
        return {CaptureVisibility::failed, u"KWin does not list this window, so it could not be hidden."_s};
    return {CaptureVisibility::failed, u"KWin's answer is unknown to this program."_s};
}

}  // namespace

KWinFacility::KWinFacility(QDBusConnection bus, QString scriptFolder, Clock& clock)
    : m_bus(std::move(bus)),
      m_scriptFolder(std::move(scriptFolder)),
      m_clock(clock) {}

QString KWinFacility::offer() const {
    return u"KWin can leave this window out of screenshots and recordings, from Plasma 6.6 on."_s;
}

QCoro::Task<HidingAnswer> KWinFacility::apply(HidingRequest request, std::stop_token stop) {
    const auto end = m_clock.now() + windowPatience;
    while (true) {
        const Report report = co_await runOnce(request, stop);
        if (!report)
            co_return HidingAnswer{CaptureVisibility::failed, report.error().errorDescription()};
        const bool mayComeYet = *report == u"missing"_s && request.isHidden && m_clock.now() < end;
        if (!mayComeYet || co_await sleep(m_clock, windowPollInterval, stop) == SleepEnd::interrupted)
            co_return answerTo(request, offer(), *report);
    }
}

QCoro::Task<KWinFacility::Report> KWinFacility::runOnce(HidingRequest request, std::stop_token stop) {
    const QString token = randomToken();
    const KWinReportAddress address{.service = m_bus.baseService(),
                                    .path = u"/com/teskara/CorvellanBram/CaptureHiding/"_s + token,
                                    .interfaceName = QString::fromUtf16(KWinReport::interfaceName),
                                    .token = token};
    QTemporaryFile script{m_scriptFolder + u"/corvellan-hiding-XXXXXX.js"_s};
    const QByteArray text = kwinScript(request, address);
    if (!script.open() || script.write(text) != text.size() || !script.flush())
        co_return std::unexpected(
            TransportError{u"A script for KWin can't be written: %1."_s.arg(script.errorString())});

    EventWait wait{m_clock, callPatience, stop};
    std::optional<QString> answer;
    KWinReport report{[&answer, token, wake = wait.waker()](const QString& theirs, const QString& word) {
        if (theirs != token || answer)
            return;
        answer = word;
        wake();
    }};
    m_bus.registerObject(address.path, &report, QDBusConnection::ExportAllSlots);

    const QString name = u"corvellan-hiding-"_s + token;
    std::optional<Error> failure = co_await load(script.fileName(), name, stop);
    while (!failure && !answer) {
        if (wait.isOver())
            failure = wait.reason(u"KWin did not confirm in time what it was asked to do."_s);
        else
            co_await wait.next();
    }
    m_bus.unregisterObject(address.path);
    auto unload = method(u"/Scripting"_s, u"org.kde.kwin.Scripting"_s, u"unloadScript"_s);
    unload << name;
    m_bus.send(unload);
    if (failure)
        co_return std::unexpected(*failure);
    co_return *answer;
}

QCoro::Task<std::optional<Error>> KWinFacility::load(QString scriptPath, QString name, std::stop_token stop) {
    auto loading = method(u"/Scripting"_s, u"org.kde.kwin.Scripting"_s, u"loadScript"_s);
    loading << scriptPath << name;
    const auto loaded = co_await call(loading, stop);
    if (!loaded)
        co_return loaded.error();
    bool isNumber = false;
    const int id = loaded->arguments().value(0).toInt(&isNumber);
    if (!isNumber || id < 0)
        co_return Error{TransportError{u"KWin did not take the script that hides the window."_s}};

    const auto run = method(u"/Scripting/Script%1"_s.arg(id), u"org.kde.kwin.Script"_s, u"run"_s);
    const auto ran = co_await call(run, stop);
    if (ran)
        co_return std::nullopt;
    // Where it stood before Plasma 6.
    const auto runOfOld = method(u"/%1"_s.arg(id), u"org.kde.kwin.Script"_s, u"run"_s);
    const auto ranOfOld = co_await call(runOfOld, stop);
    if (!ranOfOld)
        co_return ran.error();
    co_return std::nullopt;
}

QCoro::Task<std::expected<QDBusMessage, Error>> KWinFacility::call(QDBusMessage message, std::stop_token stop) {
    EventWait wait{m_clock, callPatience, stop};
    const QDBusPendingCall pending = m_bus.asyncCall(message);
    QDBusPendingCallWatcher watcher{pending};
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &watcher, wait.waker());
    while (!watcher.isFinished()) {
        if (wait.isOver())
            co_return std::unexpected(wait.reason(u"KWin did not answer in time."_s));
        co_await wait.next();
    }
    if (watcher.isError())
        co_return std::unexpected(
            TransportError{u"KWin did not do what it was asked: %1"_s.arg(watcher.error().message())});
    co_return watcher.reply();
}

}  // namespace corvellan
