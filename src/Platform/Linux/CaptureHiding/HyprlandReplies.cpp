#include "HyprlandReplies.h"

#include <algorithm>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvellan::hyprland {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype excerptLength = 80;

bool isAddress(QStringView text) {
    constexpr qsizetype longest = 18;
    return text.startsWith(u"0x") && text.size() > 2 && text.size() <= longest &&
           std::ranges::all_of(text.sliced(2), [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
           });
}

}  // namespace

std::optional<std::vector<QByteArray>> windowAddresses(const QByteArray& clientsReply, qint64 processId,
                                                       const QString& title) {
    const QJsonDocument document = QJsonDocument::fromJson(clientsReply);
    if (!document.isArray())
        return std::nullopt;
    std::vector<QByteArray> addresses;
    for (const QJsonValue value : document.array()) {
        const QJsonObject client = value.toObject();
        const QString address = client["address"_L1].toString();
        // Of a window that is not mapped nothing shows, and none that follows has its address.
        if (client["pid"_L1].toInteger(-1) != processId || client["title"_L1].toString() != title ||
            !client["mapped"_L1].toBool(true) || !isAddress(address))
            continue;
        addresses.push_back(address.toLatin1());
        if (addresses.size() == windowLimit)
            break;
    }
    return addresses;
}

bool isOk(const QByteArray& reply) {
    return reply.trimmed() == "ok";
}

std::optional<bool> propertyValue(const QByteArray& getPropReply, const QByteArray& property) {
    const QJsonDocument document = QJsonDocument::fromJson(getPropReply);
    const QJsonValue value = document.object()[QString::fromLatin1(property)];
    return value.isBool() ? std::optional{value.toBool()} : std::nullopt;
}

QString excerpt(const QByteArray& reply) {
    QString text = QString::fromUtf8(reply.first(std::min<qsizetype>(reply.size(), 4 * excerptLength))).simplified();
    text.removeIf([](QChar c) { return !c.isPrint(); });
    return text.size() > excerptLength ? text.first(excerptLength) + u'…' : text;
}

}  // namespace corvellan::hyprland
