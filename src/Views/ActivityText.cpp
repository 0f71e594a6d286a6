#include "ActivityText.h"

#include <algorithm>
#include <array>

#include "Base/Iso8601.h"
#include "Models/EnumTable.h"

namespace corvellan {

namespace {

struct EventTypeRow {
    std::u16string_view type;
    std::string_view icon;
    ColorRole color;
};

constexpr std::array eventTypeRows{
    EventTypeRow{u"call", "phone", ColorRole::green},           EventTypeRow{u"email", "envelope", ColorRole::blue},
    EventTypeRow{u"meeting", "calendar", ColorRole::purple},    EventTypeRow{u"note", "note.text", ColorRole::orange},
    EventTypeRow{u"task", "checkmark.circle", ColorRole::cyan},
};

constexpr EventTypeRow otherType{u"", "circle.fill", ColorRole::gray};

const EventTypeRow& rowOfType(QStringView type) {
    const auto found =
        std::ranges::find_if(eventTypeRows, [type](const EventTypeRow& row) { return type == QStringView{row.type}; });
    return found == eventTypeRows.end() ? otherType : *found;
}

template <typename Write>
QString dateText(const QString& text, const DateStyle& style, Write write) {
    const auto time = parseIso8601(text);
    return time ? write(*time, style) : text;
}

}  // namespace

QString formatNoteDate(const QString& text, const DateStyle& style) {
    return dateText(text, style, mediumDate);
}

QString formatEventDate(const QString& text, const DateStyle& style) {
    return dateText(text, style, shortDateTime);
}

QString timelineEventIcon(QStringView type) {
    return tableText(rowOfType(type).icon);
}

ColorRole timelineEventColor(QStringView type) {
    return rowOfType(type).color;
}

}  // namespace corvellan
