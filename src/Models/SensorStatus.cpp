#include "SensorStatus.h"

#include <boost/json/object.hpp>

#include "Base/Utf8.h"
#include "JsonParsing.h"
#include "WireKeys.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

namespace json = boost::json;

std::optional<QString> stringAt(const json::object& object, std::string_view key) {
    const auto* const value = object.if_contains(key);
    const auto* const text = value ? value->if_string() : nullptr;
    if (!text)
        return std::nullopt;
    return textFromUtf8({text->data(), static_cast<qsizetype>(text->size())});
}

bool isTrueAt(const json::object& object, std::string_view key) {
    const auto* const value = object.if_contains(key);
    const auto* const flag = value ? value->if_bool() : nullptr;
    return flag && *flag;
}

std::optional<ExtensionContextPayload> contextIn(const json::object& object) {
    auto entityType = stringAt(object, wire::server::entityType);
    auto entityId = stringAt(object, wire::server::entityId);
    if (!entityType || !entityId)
        return std::nullopt;
    return ExtensionContextPayload{.entityType = std::move(*entityType),
                                   .entityId = std::move(*entityId),
                                   .displayName = stringAt(object, wire::server::displayName),
                                   .companyName = stringAt(object, wire::server::companyName),
                                   .hubspotCompanyId = stringAt(object, wire::server::hubspotCompanyId),
                                   .callActive = isTrueAt(object, wire::server::callActive)};
}

}  // namespace

Decoded<SensorStatus> SensorStatus::decode(QByteArrayView bytes) {
    JsonDocument document;
    const auto root = document.parse(bytes);
    if (!root)
        return std::unexpected(Error{root.error()});
    const auto* const object = (*root)->if_object();
    if (!object)
        return std::unexpected(Error{DecodingError{DecodingError::Kind::wrongType, {}, u"expected an object"_s}});
    SensorStatus status{.sensorConnected = isTrueAt(*object, "sensor_connected")};
    const auto* const context = object->if_contains("context");
    if (const auto* const found = context ? context->if_object() : nullptr)
        status.context = contextIn(*found);
    return status;
}

}  // namespace corvellan
