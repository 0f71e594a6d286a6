#include "JsonWriting.h"

#include <array>
#include <boost/json/serializer.hpp>

namespace corvellan {

QByteArray serialized(const boost::json::value& value) {
    boost::json::serializer serializer;
    serializer.reset(&value);
    std::array<char, 4096> buffer;
    QByteArray bytes;
    while (!serializer.done()) {
        const auto piece = serializer.read(buffer.data(), buffer.size());
        bytes.append(piece.data(), static_cast<qsizetype>(piece.size()));
    }
    return bytes;
}

}  // namespace corvellan
