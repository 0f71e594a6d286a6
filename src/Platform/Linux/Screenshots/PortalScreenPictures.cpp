#include "PortalScreenPictures.h"

#include <array>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QRandomGenerator>
#include <QUrl>

#include "Platform/Linux/EventWait.h"
#include "ScreenshotRefused.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using Picture = std::expected<QImage, Error>;

std::unexpected<Error> failure(const QString& sentence) {
    return std::unexpected(Error{TransportError{sentence}});
}

std::unexpected<Error> refusal(const QString& sentence) {
    return std::unexpected(Error{ScreenshotRefused{sentence}});
}

QString randomToken() {
    return u"corvellan%1"_s.arg(QRandomGenerator::system()->generate64(), 0, 16);
}

/// Where the portal will answer, known before it is asked: an answer that comes at once is not missed.
QString requestPath(const QDBusConnection& bus, const QString& token) {
    const QString sender = bus.baseService().sliced(1).replace(u'.', u'_');
    return u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, token);
}

Picture readAndRemove(const QUrl& address) {
    if (!address.isLocalFile())
        return failure(u"The desktop's picture is not a file on this computer."_s);
    QFile file{address.toLocalFile()};
    if (!QFileInfo{file}.isFile() || file.size() > PortalScreenPictures::fileLimit || !file.open(QIODevice::ReadOnly))
        return failure(u"The desktop's picture can't be read."_s);
    QImageReader reader{&file};
    QImage picture = reader.read();
    file.close();
    if (picture.isNull())
        return failure(u"The desktop's picture can't be read: %1."_s.arg(reader.errorString()));
    // Only what proved to be a picture: a wrong address must not cost the user a file.
    file.remove();
    return picture;
}

}  // namespace

PortalResponse::PortalResponse(std::function<void()> onResponse) : m_onResponse(std::move(onResponse)) {}

void PortalResponse::respond(uint code, const QVariantMap& results) {
    if (std::exchange(m_hasCome, true))
        return;
    m_code = code;
    m_results = results;
    m_onResponse();
}

PortalScreenPictures::PortalScreenPictures(QDBusConnection bus, Executor& worker, Clock& clock)
    : m_bus(std::move(bus)),
      m_worker(worker),
      m_clock(clock) {}

QCoro::Task<Picture> PortalScreenPictures::takePicture(std::stop_token stop) {
    // Copied: the user may take longer than this object lives.
    QDBusConnection bus = m_bus;
    Executor& worker = m_worker;
    EventWait wait{m_clock, patience, stop};
    const QString service = u"org.freedesktop.portal.Desktop"_s;
    const QString token = randomToken();
    PortalResponse response{wait.waker()};
    const QString path = requestPath(bus, token);
    // From whatever sender: only the portal knows the token, and to resolve its name here would block.
    bus.connect({}, path, u"org.freedesktop.portal.Request"_s, u"Response"_s, &response,
                SLOT(respond(uint, QVariantMap)));

    auto message = QDBusMessage::createMethodCall(service, u"/org/freedesktop/portal/desktop"_s,
                                                  u"org.freedesktop.portal.Screenshot"_s, u"Screenshot"_s);
    message << QString{} << QVariantMap{{u"handle_token"_s, token}, {u"interactive"_s, false}, {u"modal"_s, false}};
    const QDBusPendingCall pending = bus.asyncCall(message);
    QDBusPendingCallWatcher watcher{pending};
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &watcher, wait.waker());
    while (!response.hasCome()) {
        if (watcher.isFinished() && watcher.isError())
            co_return failure(u"The desktop takes no screenshots for programs: %1"_s.arg(watcher.error().message()));
        if (wait.isOver()) {
            bus.send(QDBusMessage::createMethodCall(service, path, u"org.freedesktop.portal.Request"_s, u"Close"_s));
            if (stop.stop_requested())
                co_return std::unexpected(Error::cancelled());
            co_return refusal(u"The desktop took no screenshot in time."_s);
        }
        co_await wait.next();
    }
    constexpr uint declined = 1;
    if (response.code() == declined)
        co_return refusal(u"The screenshot was not allowed."_s);
    if (response.code() != 0)
        co_return failure(u"The desktop took no screenshot."_s);
    if (stop.stop_requested())
        co_return std::unexpected(Error::cancelled());
    const QUrl address{response.results().value(u"uri"_s).toString(), QUrl::StrictMode};
    co_return co_await worker.call([address] { return readAndRemove(address); });
}

}  // namespace corvellan
