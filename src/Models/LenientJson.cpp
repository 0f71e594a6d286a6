#include "LenientJson.h"

#include <cmath>

#include "Base/Text.h"
#include "Base/Utf8.h"

namespace corvellan {

namespace {

QString stringIn(const boost::json::string& text) {
    return textFromUtf8({text.data(), static_cast<qsizetype>(text.size())});
}

}  // namespace

void readWhole(ValueReader&, const boost::json::value& value, StringOrInt& result, const FieldPath&) {
    if (const auto* const number = value.if_int64())
        result.stringValue = QString::number(*number);
    else if (const auto* const text = value.if_string())
        result.stringValue = stringIn(*text);
    else
        result.stringValue.clear();
}

void readWhole(ValueReader&, const boost::json::value& value, StringOrNumber& result, const FieldPath&) {
    if (const auto* const text = value.if_string()) {
        result.value = text::number(stringIn(*text));
        return;
    }
    const auto number = doubleIn(value);
    result.value = number && std::isfinite(*number) ? number : std::nullopt;
}

boost::json::value writeWhole(const ValueWriter& writer, const StringOrInt& value) {
    return writer.json(value.stringValue);
}

boost::json::value writeWhole(const ValueWriter& writer, const StringOrNumber& value) {
    return value.value ? writer.json(*value.value) : boost::json::value(nullptr);
}

}  // namespace corvellan
