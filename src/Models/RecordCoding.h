#pragma once

#include "JsonReading.h"
#include "JsonWriting.h"

/// From bytes to one record and back, for the decoders of this folder alone: it drags in Boost.JSON.
namespace corvellan {

/// Parses `json` and hands its object to `read`, which takes a `FieldReader` and a `ValueReader`.
template <typename T, typename Read>
Decoded<T> decodeObject(QByteArrayView json, Read read) {
    JsonDocument document;
    const auto root = document.parse(json);
    if (!root)
        return std::unexpected(Error{root.error()});
    ValueReader values;
    T result;
    if (const auto* const object = (*root)->if_object()) {
        FieldReader fieldReader{*object, values};
        read(fieldReader, values, result);
    } else {
        values.fail(DecodingError::Kind::wrongType, {}, QStringLiteral("expected an object"));
    }
    if (values.failure())
        return std::unexpected(Error{*values.failure()});
    return result;
}

/// A record that `fields` tells the fields of.
template <typename Record>
Decoded<Record> decodeRecord(QByteArrayView json) {
    return decodeObject<Record>(json,
                                [](FieldReader& reader, ValueReader&, Record& record) { fields(reader, record); });
}

/// Any list that a `ValueReader` knows.
template <typename List>
Decoded<List> decodeList(QByteArrayView json) {
    JsonDocument document;
    const auto root = document.parse(json);
    if (!root)
        return std::unexpected(Error{root.error()});
    ValueReader values;
    List list;
    values.read(**root, list, {});
    if (values.failure())
        return std::unexpected(Error{*values.failure()});
    return list;
}

/// The list under one key of an object.
template <typename List>
Decoded<List> decodeListUnder(std::string_view key, QByteArrayView json) {
    return decodeObject<List>(json, [key](FieldReader& reader, ValueReader&, List& list) { reader.field(key, list); });
}

}  // namespace corvellan
