#include "ExtensionClient.h"

#include <memory>
#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

std::expected<QString, QString> sendReport(const SensorReport& report, quint16 coachPort,
                                           std::chrono::milliseconds limit) {
    QNetworkAccessManager network;
    network.setProxy(QNetworkProxy::NoProxy);
    const QString address = u"127.0.0.1:%1"_s.arg(coachPort);
    QNetworkRequest request{QUrl{u"http://%1/ext/sensor"_s.arg(address)}};
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    request.setTransferTimeout(static_cast<int>(limit.count()));
    const std::unique_ptr<QNetworkReply> reply{
        network.post(request, QJsonDocument{report.json()}.toJson(QJsonDocument::Compact))};
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished())
        loop.exec();

    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    constexpr int taken = 200;
    const auto answer = QJsonDocument::fromJson(reply->readAll()).object();
    if (status == 0)
        return std::unexpected(u"no sandbox answers on %1 (%2)"_s.arg(address, reply->errorString()));
    if (status != taken)
        return std::unexpected(u"the sandbox on %1 refused the report (HTTP %2): %3"_s.arg(address).arg(status).arg(
            answer.value(u"error"_s).toString(u"it gave no reason"_s)));
    if (!answer.contains(u"listeners"_s))
        return std::unexpected(u"what answers on %1 is no sandbox"_s.arg(address));
    const int listeners = answer.value(u"listeners"_s).toInt();
    if (listeners == 0)
        return u"Reported. Nobody listens now; who polls hears of it within half a minute.\n"_s;
    return listeners == 1 ? u"Reported, and one program was told at once.\n"_s
                          : u"Reported, and %1 programs were told at once.\n"_s.arg(listeners);
}

}  // namespace corvellan::sandbox
