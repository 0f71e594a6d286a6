#include "Uuid.h"

namespace corvellan {

namespace {

bool isHexDigit(QChar character) {
    const auto unit = character.unicode();
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
}

}  // namespace

std::optional<QUuid> parseUuid(QStringView text) {
    constexpr QStringView form = u"xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    if (text.size() != form.size())
        return std::nullopt;
    for (qsizetype i = 0; i < form.size(); ++i)
        if (form[i] == u'-' ? text[i] != u'-' : !isHexDigit(text[i]))
            return std::nullopt;
    return QUuid::fromString(text);
}

}  // namespace corvellan
