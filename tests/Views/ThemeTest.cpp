#include "Views/Theme.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QRawFont>
#include <QRegularExpression>

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
