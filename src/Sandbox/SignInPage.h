#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// What a user sees of the authorization server: plain HTML with a form, for any browser and keyboard, without
/// script.
namespace corvellan::sandbox::pages {

/// Asks who signs in. The form goes to `action` with the fields `ticket`, `user` and `decision`, which is
/// "allow" or "deny".
[[nodiscard]] QByteArray signIn(const QString& action, const QString& ticket, const QString& clientId,
                                const QStringList& users);

/// Says why nobody can sign in here.
[[nodiscard]] QByteArray problem(const QString& why);

}  // namespace corvellan::sandbox::pages
