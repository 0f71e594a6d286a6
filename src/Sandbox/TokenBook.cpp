#include "TokenBook.h"

#include <array>
#include <QRandomGenerator>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

QString TokenBook::issue(const TokenGrant& grant) {
    std::array<quint32, 8> bits{};
    QRandomGenerator::system()->fillRange(bits.data(), bits.size());
    const auto text = QByteArray::fromRawData(reinterpret_cast<const char*>(bits.data()), sizeof bits)
                          .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
    const QString token = u"ek_"_s + QString::fromLatin1(text);
    m_grants.insert(token, grant);
    return token;
}

std::optional<TokenGrant> TokenBook::redeem(const QString& token) {
    const auto found = m_grants.find(token);
    if (found == m_grants.end())
        return std::nullopt;
    TokenGrant grant = *found;
    m_grants.erase(found);
    return grant;
}

void TokenBook::revoke(const QString& sessionId) {
    m_grants.removeIf([&](const auto& entry) { return entry.value().sessionId == sessionId; });
}

}  // namespace corvellan::sandbox
