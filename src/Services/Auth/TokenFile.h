#pragma once

#include <optional>
#include <QString>

#include "Models/AuthTokens.h"

namespace corvellan {

/// The only copy of the tokens that outlives the process. Failures to write or to delete are nobody's
/// concern: the tokens then live in memory alone. One thread.
class TokenFile {
public:
    explicit TokenFile(QString path) : m_path(std::move(path)) {}

    /// ".config/corvellan/auth.json" below the user's home directory.
    [[nodiscard]] static QString defaultPath();

    /// Nothing where there is no file that reads as tokens.
    [[nodiscard]] std::optional<AuthTokens> load() const;

    /// Whole or not at all, readable for its owner alone whatever it was before. A symbolic link stays, and
    /// what it leads to is written.
    void save(const AuthTokens& tokens) const;

    /// Through a symbolic link too, which stays.
    void remove() const;

private:
    QString m_path;
};

}  // namespace corvellan
