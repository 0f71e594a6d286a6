#pragma once

#include <QString>
#include <QVariantMap>
#include <string_view>

#include "Models/EnumTable.h"

/// What onboarding and guide are made of, as tables have it and QML reads it.
namespace corvellan {

/// One line of an explanation.
struct IntroductionRow {
    std::string_view letter;  ///< In place of a symbol; may be empty.
    std::string_view symbol;
    std::string_view colorName;  ///< One of the theme's named colours.
    std::string_view name;
    std::string_view text;
};

/// A hint on a ground of its own colour.
struct IntroductionNote {
    std::string_view symbol;
    std::string_view colorName;
    double opacity = 0;  ///< Of the ground.
    std::string_view text;
};

[[nodiscard]] inline QVariantMap asMap(const IntroductionRow& row) {
    return {{QStringLiteral("letter"), tableText(row.letter)},
            {QStringLiteral("symbol"), tableText(row.symbol)},
            {QStringLiteral("colorName"), tableText(row.colorName)},
            {QStringLiteral("name"), tableText(row.name)},
            {QStringLiteral("text"), tableText(row.text)}};
}

/// Empty for a note without text.
[[nodiscard]] inline QVariantMap asMap(const IntroductionNote& note) {
    if (note.text.empty())
        return {};
    return {{QStringLiteral("symbol"), tableText(note.symbol)},
            {QStringLiteral("colorName"), tableText(note.colorName)},
            {QStringLiteral("opacity"), note.opacity},
            {QStringLiteral("text"), tableText(note.text)}};
}

}  // namespace corvellan
