#include "Views/Theme.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QRawFont>
#include <QRegularExpression>
#include <QSignalSpy>

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

TEST(ThemeTest, aTintIsItsRoleAtAnOpacity) {
    const QColor color = paint({ColorRole::white, 0.3});
    EXPECT_EQ(color.rgb(), QColor(255, 255, 255).rgb());
    EXPECT_NEAR(color.alphaF(), 0.3, 0.001);
    EXPECT_EQ(paint({ColorRole::red, 7}).alpha(), 255);
    EXPECT_EQ(paint({ColorRole::red, -1}).alpha(), 0);
}

TEST(ThemeTest, colorsGivenAsTriplesAreExact) {
    struct Row {
        ColorRole role;
        double red, green, blue;
    };
    for (const Row& row :
         {Row{ColorRole::gold, 0.84, 0.69, 0.37}, Row{ColorRole::discDominant, 0.69, 0.37, 0.37},
          Row{ColorRole::discInfluential, 0.84, 0.69, 0.37}, Row{ColorRole::discSteady, 0.37, 0.53, 0.69},
          Row{ColorRole::discConscientious, 0.37, 0.69, 0.69}}) {
        const QColor color = paint(row.role);
        EXPECT_NEAR(color.redF(), row.red, 0.0001);
        EXPECT_NEAR(color.greenF(), row.green, 0.0001);
        EXPECT_NEAR(color.blueF(), row.blue, 0.0001);
    }
}

/// The ratio of two colours' luminances, from 1 to 21, as the web's accessibility rules count it.
double contrast(const QColor& one, const QColor& other) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](float part) {
            return part <= 0.04045F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
    };
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor namedColor(const Theme& theme, const QString& name) {
    return theme.named().value(name).value<QColor>();
}

TEST(ThemeTest, everyTextOfAFormCanBeReadInBothSchemes) {
    Theme theme;
    for (const bool isDark : {true, false}) {
        theme.setIsDark(isDark);
        for (const QColor& ground : {theme.windowBackground(), theme.cardBackground(), theme.popupBackground()})
            for (const QColor& text :
                 {theme.foreground(), theme.secondary(), theme.accent(), theme.errorText(),
                  namedColor(theme, u"green"_s), namedColor(theme, u"orange"_s), namedColor(theme, u"red"_s),
                  namedColor(theme, u"yellow"_s), namedColor(theme, u"mint"_s), namedColor(theme, u"cyan"_s),
                  namedColor(theme, u"blue"_s), namedColor(theme, u"purple"_s), namedColor(theme, u"gold"_s)})
                EXPECT_GE(contrast(text, ground), 4.5) << qPrintable(text.name() + u" on "_s + ground.name());
        EXPECT_GE(contrast(theme.foreground(), theme.controlBackground()), 4.5);
        EXPECT_GE(contrast(theme.prominentText(), theme.green()), 4.5);
        // What tells a control's extent or state needs less.
        for (const QColor& mark : {theme.controlBorder(), theme.gray(), theme.focusRing()})
            EXPECT_GE(contrast(mark, theme.cardBackground()), 3.0) << qPrintable(mark.name());
        EXPECT_GE(contrast(theme.white(), theme.accent()), 2.5);
    }
}

TEST(ThemeTest, namedColorsFollowTheScheme) {
    Theme theme;
    QSignalSpy changes{&theme, &Theme::schemeChanged};
    for (const QString& name : {u"green"_s, u"gray"_s, u"orange"_s, u"red"_s, QString{}}) {
        theme.setIsDark(true);
        const QColor dark = namedColor(theme, name);
        theme.setIsDark(false);
        EXPECT_TRUE(dark.isValid()) << qPrintable(name);
        EXPECT_GT(dark.lightness(), namedColor(theme, name).lightness()) << qPrintable(name);
    }
    EXPECT_EQ(changes.count(), 9) << "told on real changes only";
}

TEST(ThemeTest, everyGoalsAndModesColorIsNamed) {
    const Theme theme;
    for (const auto& row : callGoalRows)
        EXPECT_TRUE(namedColor(theme, colorName(row.color)).isValid()) << row.raw;
    for (const ColorRole role : {ColorRole::white, ColorRole::gray, ColorRole::yellow, ColorRole::gold})
        EXPECT_TRUE(namedColor(theme, colorName(role)).isValid());
    EXPECT_EQ(colorName(ColorRole::discSteady), QString{});
}

TEST(ThemeTest, twoThemesShareOneIconFont) {
    const Theme one;
    const Theme other;
    EXPECT_EQ(one.iconFamily(), other.iconFamily());
}

TEST(ThemeTest, anUnknownSymbolShowsTheFallback) {
    EXPECT_FALSE(isKnownSymbol(u"no.such.symbol"));
    EXPECT_EQ(symbolGlyph(u"no.such.symbol"), fallbackGlyph());
    EXPECT_EQ(symbolGlyph(u""), fallbackGlyph());
    EXPECT_EQ(fallbackGlyph().size(), 1);
}

TEST(ThemeTest, everySymbolOfTheTablesIsMapped) {
    for (const auto& row : audienceTypeRows)
        EXPECT_TRUE(isKnownSymbol(icon(row.value))) << row.icon;
    for (const auto& row : callGoalRows)
        EXPECT_TRUE(isKnownSymbol(icon(row.value))) << row.icon;
    for (const auto& row : callOutcomeRows)
        EXPECT_TRUE(isKnownSymbol(icon(row.value))) << row.icon;
}

TEST(ThemeTest, everySymbolOfTheScreensIsMapped) {
    const QRegularExpression assignment{uR"re(symbol: "([^"]+)")re"_s};
    int found = 0;
    for (const QString& name : QDir{u":/qt/qml/Corvellan/Views"_s}.entryList({u"*.qml"_s})) {
        QFile file{u":/qt/qml/Corvellan/Views/"_s + name};
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        for (auto matches = assignment.globalMatch(QString::fromUtf8(file.readAll())); matches.hasNext(); ++found) {
            const QString symbol = matches.next().captured(1);
            EXPECT_TRUE(isKnownSymbol(symbol)) << qPrintable(name) << ": " << qPrintable(symbol);
        }
    }
    EXPECT_GE(found, 4);
}

TEST(ThemeTest, theEmbeddedFontHasAGlyphForEverySymbolAndNothingElse) {
    const Theme theme;
    ASSERT_EQ(theme.iconFamily(), u"Corvellan Icons"_s);
    QFile file{u":/corvellan/icons.ttf"_s};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_LT(file.size(), 64 * 1024);
    const QRawFont font{file.readAll(), 16};
    for (const std::string_view name : symbolNames()) {
        const QString glyph = symbolGlyph(QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size())));
        EXPECT_TRUE(font.supportsCharacter(glyph.toUcs4().first())) << name;
    }
    EXPECT_FALSE(font.supportsCharacter(u'A'));
}

}  // namespace

}  // namespace corvellan
