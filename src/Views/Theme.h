#pragma once

#include <QColor>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QVariantMap>
#include <string_view>
#include <vector>

#include "Models/Types.h"

namespace corvellan {

/// What a colour role looks like, on a dark surface.
[[nodiscard]] QColor paint(Tint tint);
[[nodiscard]] inline QColor paint(ColorRole role, double opacity = 1.0) {
    return paint(Tint{role, opacity});
}
/// Under which name `Theme::named` has the role: "green", "yellow". The four DISC roles, which are never used as
/// text of a form, have none.
[[nodiscard]] QString colorName(ColorRole role);

/// The glyph, in the icon font, of a system symbol name. For an unknown name `fallbackGlyph`, which is
/// drawn like any other icon.
[[nodiscard]] QString symbolGlyph(QStringView symbol);
/// A question mark in a circle: visible, and plainly not what was meant.
[[nodiscard]] QString fallbackGlyph();
[[nodiscard]] bool isKnownSymbol(QStringView symbol);
/// Every symbol name that has a glyph.
[[nodiscard]] std::vector<std::string_view> symbolNames();

/// The looks of the program in one place: colours, fonts and icons. Screens are handed this object.
/// Colours follow the scheme, dark at first; a call's panel has a theme of its own that stays dark.
/// Needs the QGuiApplication.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Screens are handed the theme")

    Q_PROPERTY(QString textFamily READ textFamily CONSTANT)
    Q_PROPERTY(QString monospacedFamily READ monospacedFamily CONSTANT)
    Q_PROPERTY(QString emojiFamily READ emojiFamily CONSTANT)
    Q_PROPERTY(QString iconFamily READ iconFamily CONSTANT)

    Q_PROPERTY(bool isDark READ isDark WRITE setIsDark NOTIFY schemeChanged)

    // The same in both schemes.
    Q_PROPERTY(QColor white READ white CONSTANT)
    Q_PROPERTY(QColor black READ black CONSTANT)

    Q_PROPERTY(QColor red READ red NOTIFY schemeChanged)
    Q_PROPERTY(QColor orange READ orange NOTIFY schemeChanged)
    Q_PROPERTY(QColor green READ green NOTIFY schemeChanged)
    Q_PROPERTY(QColor gray READ gray NOTIFY schemeChanged)
    Q_PROPERTY(QColor cyan READ cyan NOTIFY schemeChanged)
    Q_PROPERTY(QColor gold READ gold NOTIFY schemeChanged)
    /// Those that view states tell by name, as `colorName` has them, readable as text on any ground of the
    /// scheme; under "" the one of ordinary text.
    Q_PROPERTY(QVariantMap named READ named NOTIFY schemeChanged)
    /// Links, and switches that are on.
    Q_PROPERTY(QColor accent READ accent NOTIFY schemeChanged)

    /// Text and symbols.
    Q_PROPERTY(QColor foreground READ foreground NOTIFY schemeChanged)
    /// Values, captions and what else stands back.
    Q_PROPERTY(QColor secondary READ secondary NOTIFY schemeChanged)
    Q_PROPERTY(QColor errorText READ errorText NOTIFY schemeChanged)
    /// On a button that is filled with a colour.
    Q_PROPERTY(QColor prominentText READ prominentText NOTIFY schemeChanged)

    /// The surface of the window between calls; opaque.
    Q_PROPERTY(QColor windowBackground READ windowBackground NOTIFY schemeChanged)
    /// The surface of a group of rows.
    Q_PROPERTY(QColor cardBackground READ cardBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor hairline READ hairline NOTIFY schemeChanged)
    /// The surface of buttons, pickers and fields, and the line round them.
    Q_PROPERTY(QColor controlBackground READ controlBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor controlBorder READ controlBorder NOTIFY schemeChanged)
    /// The surface of lists and tips that lie above others; opaque.
    Q_PROPERTY(QColor popupBackground READ popupBackground NOTIFY schemeChanged)
    /// The ring round the control that has the keyboard.
    Q_PROPERTY(QColor focusRing READ focusRing NOTIFY schemeChanged)

    /// The smallest side of anything that can be pressed, in pixels.
    Q_PROPERTY(int hitTarget READ hitTarget CONSTANT)

public:
    explicit Theme(QObject* parent = nullptr);

    [[nodiscard]] QString textFamily() const;
    [[nodiscard]] QString monospacedFamily() const;
    [[nodiscard]] QString emojiFamily() const;
    [[nodiscard]] QString iconFamily() const { return m_iconFamily; }

    [[nodiscard]] bool isDark() const { return m_isDark; }
    void setIsDark(bool isDark);

    [[nodiscard]] static QColor white();
    [[nodiscard]] static QColor black();
    [[nodiscard]] QColor red() const;
    [[nodiscard]] QColor orange() const;
    [[nodiscard]] QColor green() const;
    [[nodiscard]] QColor gray() const;
    [[nodiscard]] QColor cyan() const;
    [[nodiscard]] QColor gold() const;
    [[nodiscard]] QColor yellow() const;
    [[nodiscard]] QColor mint() const;
    [[nodiscard]] QColor blue() const;
    [[nodiscard]] QColor purple() const;
    [[nodiscard]] QVariantMap named() const;
    [[nodiscard]] QColor accent() const;
    [[nodiscard]] QColor foreground() const;
    [[nodiscard]] QColor secondary() const;
    [[nodiscard]] QColor errorText() const;
    [[nodiscard]] QColor prominentText() const;
    [[nodiscard]] QColor windowBackground() const;
    [[nodiscard]] QColor cardBackground() const;
    [[nodiscard]] QColor hairline() const;
    [[nodiscard]] QColor controlBackground() const;
    [[nodiscard]] QColor controlBorder() const;
    [[nodiscard]] QColor popupBackground() const;
    [[nodiscard]] QColor focusRing() const;
    [[nodiscard]] static int hitTarget() { return 28; }

    Q_INVOKABLE [[nodiscard]] QString glyph(const QString& symbol) const;

Q_SIGNALS:
    void schemeChanged();

private:
    QString m_iconFamily;
    bool m_isDark = true;
};

}  // namespace corvellan
