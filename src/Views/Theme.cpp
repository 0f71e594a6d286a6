#include "Theme.h"

#include <algorithm>
#include <array>
#include <QFont>
#include <QFontDatabase>
#include <QLatin1StringView>

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

struct SymbolRow {
    std::string_view symbol;
    char32_t codePoint;
};

/// Written by the build from Symbols.table.
constexpr auto symbolRows = std::to_array<SymbolRow>({
#include "SymbolTable.inc"
});

constexpr QStringView fallbackSymbol = u"questionmark.circle";

QLatin1StringView text(std::string_view view) {
    return QLatin1StringView{view.data(), static_cast<qsizetype>(view.size())};
}

const SymbolRow* rowFor(QStringView symbol) {
    const auto found =
        std::ranges::find_if(symbolRows, [symbol](const SymbolRow& row) { return symbol == text(row.symbol); });
    return found == symbolRows.end() ? nullptr : &*found;
}

QString glyphOf(const SymbolRow& row) {
    return QString::fromUcs4(&row.codePoint, 1);
}

QColor base(ColorRole role) {
    switch (role) {
    case ColorRole::white: return QColor{255, 255, 255};
    case ColorRole::gray: return QColor{152, 152, 157};
    case ColorRole::red: return QColor{255, 69, 58};
    case ColorRole::orange: return QColor{255, 159, 10};
    case ColorRole::yellow: return QColor{255, 214, 10};
    case ColorRole::green: return QColor{48, 209, 88};
    case ColorRole::mint: return QColor{102, 212, 207};
    case ColorRole::cyan: return QColor{100, 210, 255};
    case ColorRole::blue: return QColor{64, 156, 255};
    case ColorRole::purple: return QColor{191, 90, 242};
    case ColorRole::gold: return QColor::fromRgbF(0.84F, 0.69F, 0.37F);
    case ColorRole::discDominant: return QColor::fromRgbF(0.69F, 0.37F, 0.37F);
    case ColorRole::discInfluential: return QColor::fromRgbF(0.84F, 0.69F, 0.37F);
    case ColorRole::discSteady: return QColor::fromRgbF(0.37F, 0.53F, 0.69F);
    case ColorRole::discConscientious: return QColor::fromRgbF(0.37F, 0.69F, 0.69F);
    }
    Q_UNREACHABLE();
}

}  // namespace

QColor paint(Tint tint) {
    QColor color = base(tint.role);
    color.setAlphaF(static_cast<float>(std::clamp(tint.opacity, 0.0, 1.0)));
    return color;
}

QString symbolGlyph(QStringView symbol) {
    const SymbolRow* const row = rowFor(symbol);
    return row ? glyphOf(*row) : fallbackGlyph();
}

QString fallbackGlyph() {
    return glyphOf(*rowFor(fallbackSymbol));
}

bool isKnownSymbol(QStringView symbol) {
    return rowFor(symbol) != nullptr;
}

std::vector<std::string_view> symbolNames() {
    std::vector<std::string_view> names;
    for (const SymbolRow& row : symbolRows)
        names.push_back(row.symbol);
    return names;
}

Theme::Theme(QObject* parent) : QObject(parent) {
    // Families that a desktop may have instead; the last is the font system's own choice.
    QFont::insertSubstitutions(textFamily(), {u"Noto Sans"_s, u"Cantarell"_s, u"DejaVu Sans"_s, u"sans-serif"_s});
    QFont::insertSubstitutions(monospacedFamily(), {u"Noto Mono"_s, u"DejaVu Sans Mono"_s, u"monospace"_s});
    const int id = QFontDatabase::addApplicationFont(u":/corvellan/icons.ttf"_s);
    if (const QStringList families = QFontDatabase::applicationFontFamilies(id); !families.isEmpty())
        m_iconFamily = families.first();
}

QString Theme::textFamily() const {
    return u"Inter"_s;
}

QString Theme::monospacedFamily() const {
    return u"Noto Sans Mono"_s;
}

QString Theme::emojiFamily() const {
    return u"Noto Color Emoji"_s;
}

QColor Theme::white() {
    return paint(ColorRole::white);
}

QColor Theme::black() {
    return QColor{0, 0, 0};
}

QColor Theme::red() {
    return paint(ColorRole::red);
}

QColor Theme::orange() {
    return paint(ColorRole::orange);
}

QColor Theme::green() {
    return paint(ColorRole::green);
}

QColor Theme::cyan() {
    return paint(ColorRole::cyan);
}

QColor Theme::gold() {
    return paint(ColorRole::gold);
}

QColor Theme::windowBackground() {
    return QColor{0x1c, 0x1c, 0x20};
}

QColor Theme::focusRing() {
    return paint(ColorRole::cyan, 0.9);
}

QString Theme::glyph(const QString& symbol) const {
    return symbolGlyph(symbol);
}

}  // namespace corvellan
