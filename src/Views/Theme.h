#pragma once

#include <QColor>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <string_view>
#include <vector>

#include "Models/Types.h"

namespace corvellan {

/// What a colour role looks like, on a dark surface.
[[nodiscard]] QColor paint(Tint tint);
[[nodiscard]] inline QColor paint(ColorRole role, double opacity = 1.0) {
    return paint(Tint{role, opacity});
}

/// The glyph, in the icon font, of a system symbol name. For an unknown name `fallbackGlyph`, which is
/// drawn like any other icon.
[[nodiscard]] QString symbolGlyph(QStringView symbol);
/// A question mark in a circle: visible, and plainly not what was meant.
[[nodiscard]] QString fallbackGlyph();
[[nodiscard]] bool isKnownSymbol(QStringView symbol);
/// Every symbol name that has a glyph.
[[nodiscard]] std::vector<std::string_view> symbolNames();

/// The looks of the program in one place: colours, fonts and icons. Screens are handed this object.
/// Needs the QGuiApplication.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Screens are handed the theme")

    Q_PROPERTY(QString textFamily READ textFamily CONSTANT)
    Q_PROPERTY(QString monospacedFamily READ monospacedFamily CONSTANT)
    Q_PROPERTY(QString emojiFamily READ emojiFamily CONSTANT)
    Q_PROPERTY(QString iconFamily READ iconFamily CONSTANT)

    Q_PROPERTY(QColor white READ white CONSTANT)
    Q_PROPERTY(QColor black READ black CONSTANT)
    Q_PROPERTY(QColor red READ red CONSTANT)
    Q_PROPERTY(QColor orange READ orange CONSTANT)
    Q_PROPERTY(QColor green READ green CONSTANT)
    Q_PROPERTY(QColor cyan READ cyan CONSTANT)
    Q_PROPERTY(QColor gold READ gold CONSTANT)
    /// The surface of the window between calls; opaque.
    Q_PROPERTY(QColor windowBackground READ windowBackground CONSTANT)
    /// The ring round the control that has the keyboard.
    Q_PROPERTY(QColor focusRing READ focusRing CONSTANT)
    /// The smallest side of anything that can be pressed, in pixels.
    Q_PROPERTY(int hitTarget READ hitTarget CONSTANT)

public:
    explicit Theme(QObject* parent = nullptr);

    [[nodiscard]] QString textFamily() const;
    [[nodiscard]] QString monospacedFamily() const;
    [[nodiscard]] QString emojiFamily() const;
    [[nodiscard]] QString iconFamily() const { return m_iconFamily; }

    [[nodiscard]] static QColor white();
    [[nodiscard]] static QColor black();
    [[nodiscard]] static QColor red();
    [[nodiscard]] static QColor orange();
    [[nodiscard]] static QColor green();
    [[nodiscard]] static QColor cyan();
    [[nodiscard]] static QColor gold();
    [[nodiscard]] static QColor windowBackground();
    [[nodiscard]] static QColor focusRing();
    [[nodiscard]] static int hitTarget() { return 28; }

    Q_INVOKABLE [[nodiscard]] QString glyph(const QString& symbol) const;

private:
    QString m_iconFamily;
};

}  // namespace corvellan
