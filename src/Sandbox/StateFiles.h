#pragma once

#include <expected>
#include <QByteArray>
#include <QString>

#include "AccountBook.h"
#include "CallBook.h"
#include "SensorBook.h"

/// The files in which the sandbox's books outlive it, as JSON. Every decoder takes any bytes; its error is a
/// sentence. What one accepts is encoded the same again.
namespace corvellan::sandbox {

/// A longer file is no file of ours.
inline constexpr qsizetype longestStateFile = 16 * 1024 * 1024;

/// Holds secrets: the key that signs tokens, and the refresh tokens.
[[nodiscard]] QByteArray encodeAccounts(const AccountBook::State& state);
[[nodiscard]] std::expected<AccountBook::State, QString> decodeAccounts(const QByteArray& bytes);

/// A call that is over.
[[nodiscard]] QByteArray encodeCall(const CallRecord& call);
[[nodiscard]] std::expected<CallRecord, QString> decodeCall(const QByteArray& bytes);

[[nodiscard]] QByteArray encodeSensor(const SensorBook::State& state);
[[nodiscard]] std::expected<SensorBook::State, QString> decodeSensor(const QByteArray& bytes);

}  // namespace corvellan::sandbox
