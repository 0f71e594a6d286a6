#pragma once

#include <memory>
#include <QString>
#include <QTextDocument>
#include <QTextFormat>

namespace corvellan {

/// A note as a document that can be drawn: the HTML of its Markdown with that HTML's style. It loads nothing from
/// anywhere, whatever it names. Made on any thread, and drawn on the one that it then lives on.
class NoteDocument final : public QTextDocument {
    Q_OBJECT

public:
    /// Beyond these a text is no page any more, and only its beginning is shown: laying out one long word takes a time
    /// that grows with its square, and that happens where it is drawn, at every change of its width.
    static constexpr qsizetype mostCharacters = 30'000;
    static constexpr qsizetype mostPieces = 2'000;  ///< Lines and table cells.
    /// A cell's format has here the colour of the line below it, for whose height its padding has room. As a border
    /// the engine would draw it at some broken scales thicker in one row than in the next.
    static constexpr int lineColorProperty = QTextFormat::UserProperty + 1;
    static constexpr qreal lineHeight = 1;

    /// \param thread where the document will live.
    [[nodiscard]] static std::shared_ptr<NoteDocument> make(const QString& markdown, QThread* thread);

    /// The note goes on behind the document's end.
    [[nodiscard]] bool isCut() const { return m_isCut; }

protected:
    QVariant loadResource(int type, const QUrl& name) override;

private:
    explicit NoteDocument(const QString& markdown);

    /// What the rich text engine does otherwise than the style says.
    void restyle();

    bool m_isCut = false;
};

}  // namespace corvellan
