#pragma once

#include <optional>
#include <QByteArray>
#include <QString>
#include <vector>

/// Hyprland's answers, read strictly: any bytes give a value or none. Pure functions.
namespace corvellan::hyprland {

/// Beyond so many windows of one process with one title something is wrong.
inline constexpr std::size_t windowLimit = 8;

/// The addresses of the mapped windows of `processId` with this very title, at most `windowLimit`. Absent when the
/// reply is no list of windows. An address is "0x" and hexadecimal digits, safe within a request.
[[nodiscard]] std::optional<std::vector<QByteArray>> windowAddresses(const QByteArray& clientsReply, qint64 processId,
                                                                     const QString& title);

/// Whether the request was carried out.
[[nodiscard]] bool isOk(const QByteArray& reply);

/// The value of a property of truth values. Absent when the reply tells none.
[[nodiscard]] std::optional<bool> propertyValue(const QByteArray& getPropReply, const QByteArray& property);

/// The reply's beginning, fit to be shown in a sentence: printable, on one line, not long.
[[nodiscard]] QString excerpt(const QByteArray& reply);

}  // namespace corvellan::hyprland
