#include "TokenFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

/// What the path leads to, whether it is there or not. Nothing for links in a circle.
std::optional<QString> resolved(QString path) {
    constexpr int mostLinks = 40;
    for (int i = 0; i < mostLinks; ++i) {
        const QFileInfo info{path};
        if (!info.isSymLink())
            return path;
        path = info.symLinkTarget();
    }
    return std::nullopt;
}

}  // namespace

QString TokenFile::defaultPath() {
    return QDir::homePath() + u"/.config/corvellan/auth.json"_s;
}

std::optional<AuthTokens> TokenFile::load() const {
    // Opening a pipe would wait for somebody to write to it.
    if (!QFileInfo{m_path}.isFile())
        return std::nullopt;
    QFile file{m_path};
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.read(AuthTokens::maxFileBytes + 1);
    if (bytes.size() > AuthTokens::maxFileBytes)
        return std::nullopt;
    auto tokens = AuthTokens::decode(bytes);
    return tokens ? std::optional{std::move(*tokens)} : std::nullopt;
}

void TokenFile::save(const AuthTokens& tokens) const {
    QDir{}.mkpath(QFileInfo{m_path}.path());
    const auto path = resolved(m_path);
    if (!path)
        return;
    QSaveFile file{*path};
    if (!file.open(QIODevice::WriteOnly))
        return;
    // Before a byte is in it; by itself it would take over the mode of the file that it replaces.
    if (!file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        return;
    file.write(tokens.encode());
    file.commit();
}

void TokenFile::remove() const {
    if (const auto path = resolved(m_path))
        QFile::remove(*path);
}

}  // namespace corvellan
