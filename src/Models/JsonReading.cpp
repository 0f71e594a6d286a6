#include "JsonReading.h"

#include <algorithm>
#include <cmath>

#include "Base/Utf8.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

// Enough of an unknown word to recognise it in a log.
constexpr std::size_t shownBytes = 60;

const char* kindName(boost::json::kind kind) {
    switch (kind) {
    case boost::json::kind::null: return "null";
    case boost::json::kind::bool_: return "a boolean";
    case boost::json::kind::int64:
    case boost::json::kind::uint64:
    case boost::json::kind::double_: return "a number";
    case boost::json::kind::string: return "a string";
    case boost::json::kind::array: return "an array";
    case boost::json::kind::object: return "an object";
    }
    Q_UNREACHABLE();
}

}  // namespace

std::optional<double> doubleIn(const boost::json::value& value) {
    if (const auto* const number = value.if_double())
        return *number;
    if (const auto* const number = value.if_int64())
        return static_cast<double>(*number);
    if (const auto* const number = value.if_uint64())
        return static_cast<double>(*number);
    return std::nullopt;
}

QString FieldPath::text() const {
    const QString before = parent ? parent->text() : QString{};
    if (index)
        return u"%1[%2]"_s.arg(before).arg(*index);
    const auto name = QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
    return before.isEmpty() ? name : before + u'.' + name;
}

void ValueReader::fail(DecodingError::Kind kind, const FieldPath& path, QString detail) {
    m_failure = DecodingError{kind, path.text(), std::move(detail)};
}

void ValueReader::failType(const Value& found, const char* expected, const FieldPath& path) {
    fail(DecodingError::Kind::wrongType, path,
         u"expected %1, found %2"_s.arg(QLatin1StringView{expected}, QLatin1StringView{kindName(found.kind())}));
}

void ValueReader::failUnknownWord(const boost::json::string& word, const FieldPath& path) {
    const auto shown = static_cast<qsizetype>(std::min(word.size(), shownBytes));
    fail(DecodingError::Kind::unknownValue, path, QString::fromUtf8(word.data(), shown));
}

void ValueReader::failNumber(const Value& found, const FieldPath& path) {
    if (found.is_number())
        fail(DecodingError::Kind::outOfRange, path, {});
    else
        failType(found, "a whole number", path);
}

void ValueReader::read(const Value& value, QString& text, const FieldPath& path) {
    if (const auto* const string = value.if_string())
        text = textFromUtf8({string->data(), static_cast<qsizetype>(string->size())});
    else
        failType(value, "a string", path);
}

void ValueReader::read(const Value& value, double& number, const FieldPath& path) {
    const auto found = doubleIn(value);
    if (found && std::isfinite(*found))
        number = *found;
    else if (found)
        fail(DecodingError::Kind::outOfRange, path, {});
    else
        failType(value, "a number", path);
}

void ValueReader::read(const Value& value, bool& flag, const FieldPath& path) {
    if (const auto* const found = value.if_bool())
        flag = *found;
    else
        failType(value, "a boolean", path);
}

}  // namespace corvellan
