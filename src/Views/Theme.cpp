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

/// Loads the font at the first call: a program has two themes.
const QString& embeddedIconFamily() {
    static const QString family = [] {
        const int id = QFontDatabase::addApplicationFont(u":/corvellan/icons.ttf"_s);
        return QFontDatabase::applicationFontFamilies(id).value(0);
    }();
    return family;
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

QString colorName(ColorRole role) {
    switch (role) {
    case ColorRole::white: return u"white"_s;
    case ColorRole::gray: return u"gray"_s;
    case ColorRole::red: return u"red"_s;
    case ColorRole::orange: return u"orange"_s;
    case ColorRole::yellow: return u"yellow"_s;
    case ColorRole::green: return u"green"_s;
    case ColorRole::mint: return u"mint"_s;
    case ColorRole::cyan: return u"cyan"_s;
    case ColorRole::blue: return u"blue"_s;
    case ColorRole::purple: return u"purple"_s;
    case ColorRole::gold: return u"gold"_s;
    case ColorRole::discDominant:
    case ColorRole::discInfluential:
    case ColorRole::discSteady:
    case ColorRole::discConscientious: return {};
    }
    Q_UNREACHABLE();
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
    m_iconFamily = embeddedIconFamily();
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

void Theme::setIsDark(bool isDark) {
    if (m_isDark == isDark)
        return;
    m_isDark = isDark;
    Q_EMIT schemeChanged();
}

QColor Theme::white() {
    return paint(ColorRole::white);
}

QColor Theme::black() {
    return QColor{0, 0, 0};
}

// The light ones are darker, so that they can be read as text on a light ground.

QColor Theme::red() const {
    return m_isDark ? paint(ColorRole::red) : QColor{0xc4, 0x1c, 0x14};
}

QColor Theme::orange() const {
    return m_isDark ? paint(ColorRole::orange) : QColor{0xa3, 0x4d, 0x00};
}

QColor Theme::green() const {
    return m_isDark ? paint(ColorRole::green) : QColor{0x17, 0x7a, 0x35};
}

QColor Theme::gray() const {
    return m_isDark ? paint(ColorRole::gray) : QColor{0x6c, 0x6c, 0x72};
}

QColor Theme::cyan() const {
    return m_isDark ? paint(ColorRole::cyan) : QColor{0x00, 0x6f, 0x94};
}

QColor Theme::gold() const {
    return m_isDark ? paint(ColorRole::gold) : QColor{0x86, 0x65, 0x1c};
}

QColor Theme::yellow() const {
    return m_isDark ? paint(ColorRole::yellow) : QColor{0x7d, 0x5f, 0x00};
}

QColor Theme::mint() const {
    return m_isDark ? paint(ColorRole::mint) : QColor{0x0a, 0x73, 0x6d};
}

QColor Theme::blue() const {
    return m_isDark ? QColor{0x5a, 0xac, 0xff} : QColor{0x0b, 0x63, 0xce};
}

QColor Theme::purple() const {
    return m_isDark ? QColor{0xcf, 0x82, 0xf7} : QColor{0x8a, 0x2f, 0xbe};
}

QVariantMap Theme::named() const {
    // As text on a card the plain dark red is too dim.
    return {{u"white"_s, white()},
            {u"green"_s, green()},
            {u"gray"_s, gray()},
            {u"orange"_s, orange()},
            {u"red"_s, m_isDark ? QColor{0xff, 0x6b, 0x61} : red()},
            {u"yellow"_s, yellow()},
            {u"mint"_s, mint()},
            {u"cyan"_s, cyan()},
            {u"blue"_s, blue()},
            {u"purple"_s, purple()},
            {u"gold"_s, gold()},
            {QString{}, foreground()}};
}

QColor Theme::accent() const {
    return m_isDark ? paint(ColorRole::blue) : QColor{0x0b, 0x63, 0xce};
}

QColor Theme::foreground() const {
    return m_isDark ? white() : QColor{0x1d, 0x1d, 0x20};
}

QColor Theme::secondary() const {
    return m_isDark ? QColor{0xa6, 0xa6, 0xac} : QColor{0x5f, 0x5f, 0x66};
}

QColor Theme::errorText() const {
    return m_isDark ? QColor{0xff, 0x9d, 0x96} : QColor{0x9c, 0x17, 0x10};
}

QColor Theme::prominentText() const {
    return m_isDark ? black() : white();
}

QColor Theme::windowBackground() const {
    return m_isDark ? QColor{0x1c, 0x1c, 0x20} : QColor{0xf2, 0xf2, 0xf5};
}

QColor Theme::cardBackground() const {
    return m_isDark ? QColor{0x27, 0x27, 0x2c} : white();
}

QColor Theme::hairline() const {
    return m_isDark ? paint(ColorRole::white, 0.1) : QColor{0, 0, 0, 0x1c};
}

QColor Theme::controlBackground() const {
    return m_isDark ? QColor{0x3a, 0x3a, 0x41} : QColor{0xfb, 0xfb, 0xfc};
}

QColor Theme::controlBorder() const {
    return m_isDark ? QColor{0x74, 0x74, 0x7d} : QColor{0x8a, 0x8a, 0x92};
}

QColor Theme::popupBackground() const {
    return m_isDark ? QColor{0x2c, 0x2c, 0x30} : white();
}

QColor Theme::focusRing() const {
    return m_isDark ? paint(ColorRole::cyan, 0.9) : accent();
}

QString Theme::glyph(const QString& symbol) const {
    return symbolGlyph(symbol);
}

}  // namespace corvellan
