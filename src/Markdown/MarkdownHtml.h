#pragma once

#include <QString>

/// A note's Markdown as an HTML document. Not a general engine: headings of levels 2 and 3, bold spans, mail and
/// telephone links, tables and lists with "- ", by rules that build on each other's results. Any markup in the note
/// stays visible as text. Pure functions, callable from any thread.
namespace corvellan::markdown {

/// The text with "&", "<" and ">" made harmless.
[[nodiscard]] QString escapeHTML(QString text);

/// The whole document, with the style for a dark ground. It refers to nothing outside itself but mail and
/// telephone links. Each rule has a bound on its work; one that would exceed it on a hostile text leaves the text
/// as it was, and the others still apply. May take a few tenths of a second then: not for the main thread.
[[nodiscard]] QString wrapMarkdown(const QString& text);

}  // namespace corvellan::markdown
