#pragma once

#include "JsonReading.h"
#include "JsonWriting.h"
#include "LenientValues.h"

/// How lenient values are read and written, for the decoders of this folder alone.
namespace corvellan {

void readWhole(ValueReader& reader, const boost::json::value& value, StringOrInt& result, const FieldPath& path);
void readWhole(ValueReader& reader, const boost::json::value& value, StringOrNumber& result, const FieldPath& path);

/// A string, always.
[[nodiscard]] boost::json::value writeWhole(const ValueWriter& writer, const StringOrInt& value);
/// A number or a null.
[[nodiscard]] boost::json::value writeWhole(const ValueWriter& writer, const StringOrNumber& value);

}  // namespace corvellan
