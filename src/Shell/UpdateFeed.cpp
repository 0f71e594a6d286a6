#include "UpdateFeed.h"

#include <QStringDecoder>

namespace corvellan::updatefeed {

using namespace Qt::StringLiterals;

std::optional<QUrl> url(const QString& productionCoachUrl) {
    const QUrl coach{productionCoachUrl, QUrl::StrictMode};
    const bool isSecure = coach.scheme() == u"wss";
    if (!coach.isValid() || coach.host().isEmpty() || (!isSecure && coach.scheme() != u"ws"))
        return std::nullopt;
    QUrl feed;
    feed.setScheme(isSecure ? u"https"_s : u"http"_s);
    feed.setHost(coach.host());
    feed.setPort(coach.port());
    feed.setPath(u"/appcast.xml"_s);
    return feed;
}

HttpRequest request(QUrl url) {
    return {.url = std::move(url), .timeout = timeout, .maxBodyBytes = maxBodyBytes};
}

QString shortVersionString(QByteArrayView body) {
    QStringDecoder decode{QStringDecoder::Utf8, QStringConverter::Flag::Stateless};
    const QString text = decode(body);
    if (decode.hasError())
        return {};
    constexpr QStringView mark = u"sparkle:shortVersionString=\"";
    const qsizetype found = text.indexOf(mark);
    if (found < 0)
        return {};
    const qsizetype start = found + mark.size();
    const qsizetype end = text.indexOf(u'"', start);
    return end < 0 ? QString{} : text.sliced(start, end - start);
}

bool isUpdate(const QString& runningVersion, const QString& feedVersion) {
    // Bytes of UTF-8 sort as code points do; QString's own order splits those beyond 16 bits.
    return runningVersion.toUtf8() < feedVersion.toUtf8();
}

}  // namespace corvellan::updatefeed
