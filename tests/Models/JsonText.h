#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include "Models/Protocol.h"

/// What the tests of the protocol share. They judge bytes with Qt's own JSON reader, so that ours is
/// never its own witness.
namespace corvellan::test {

/// Equal as JSON, whatever the order of keys and the blanks.
[[nodiscard]] inline QJsonObject asJson(const QByteArray& bytes) {
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(bytes, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << bytes.constData();
    EXPECT_TRUE(document.isObject()) << bytes.constData();
    return document.object();
}

/// The decoding failure of `result`, or a failed expectation.
template <typename T>
[[nodiscard]] DecodingError failureOf(const Decoded<T>& result) {
    if (result.has_value()) {
        ADD_FAILURE() << "decoded, though it should not have";
        return {};
    }
    const auto* const error = result.error().template as<DecodingError>();
    if (!error) {
        ADD_FAILURE() << "failed with another error";
        return {};
    }
    return *error;
}

[[nodiscard]] inline QString pathOf(const Decoded<ServerMsg>& result) {
    return failureOf(result).path;
}

[[nodiscard]] inline QString pathOf(const Decoded<ClientMsg>& result) {
    return failureOf(result).path;
}

/// Decodes a message that must be a `Message`.
template <typename Message, typename Family>
[[nodiscard]] Message messageIn(const Decoded<Family>& result) {
    if (!result.has_value()) {
        ADD_FAILURE() << result.error().errorDescription().toStdString();
        return {};
    }
    const auto* const message = std::get_if<Message>(&result->value);
    if (!message) {
        ADD_FAILURE() << "another message";
        return {};
    }
    return *message;
}

}  // namespace corvellan::test
