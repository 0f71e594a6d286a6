#include "Pkce.h"

#include <array>
#include <QCryptographicHash>
#include <QRandomGenerator>

namespace corvellan {

QByteArray base64URLEncoded(const QByteArray& bytes) {
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

QByteArray Pkce::challengeOf(QByteArrayView verifier) {
    QCryptographicHash hash{QCryptographicHash::Sha256};
    hash.addData(verifier);
    return base64URLEncoded(hash.result());
}

Pkce Pkce::make() {
    std::array<quint32, 8> bits{};
    QRandomGenerator::system()->fillRange(bits.data(), bits.size());
    const QByteArray bytes{reinterpret_cast<const char*>(bits.data()), sizeof bits};
    Pkce pkce{.verifier = base64URLEncoded(bytes), .challenge = {}};
    pkce.challenge = challengeOf(pkce.verifier);
    return pkce;
}

}  // namespace corvellan
