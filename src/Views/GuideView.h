#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QVariantList>

namespace corvellan {

/// View state of the guide: the product's own account of itself. Its words are rules that the coaching server and
/// the other screens follow. Main thread.
class GuideView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString subtitle READ subtitle CONSTANT)
    /// Maps with "title", "symbol", "text", "rows" and "note", in the order of the page. A row is a map with "letter",
    /// "symbol", "colorName", "name" and "text", of which letter or symbol is empty; a note has "symbol", "colorName"
    /// and "text", and is undefined where there is none. Colours are the theme's named ones.
    Q_PROPERTY(QVariantList sections READ sections CONSTANT)

public:
    using QObject::QObject;

    [[nodiscard]] static QString title();
    [[nodiscard]] static QString subtitle();
    [[nodiscard]] static QVariantList sections();
};

}  // namespace corvellan
