#include "MarkdownHtml.h"

#include <unicode/regex.h>
#include <limits>
#include <memory>

#include "MarkdownTables.h"

namespace corvellan::markdown {

using namespace Qt::StringLiterals;

namespace {

/// Bounds one rule's work, in ICU's unit of 10,000 steps of the engine. A page needs less than one.
constexpr int32_t workLimit = 1000;

const QString& head() {
    static const QString text =
        uR"(<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<style>
* { margin: 0; padding: 0; box-sizing: border-box; }
body {
    font-family: "Inter", "Noto Sans", "Cantarell", "DejaVu Sans", sans-serif;
    font-size: 13px;
    line-height: 1.5;
    color: #e0e0e0;
    padding: 16px;
    -webkit-font-smoothing: antialiased;
}
p { margin-bottom: 8px; }
h2 {
    font-size: 16px;
    font-weight: 700;
    color: #ffffff;
    margin: 16px 0 8px 0;
    padding-bottom: 4px;
    border-bottom: 1px solid rgba(255,255,255,0.1);
}
h3 { font-size: 14px; font-weight: 600; color: #f0a050; margin: 12px 0 6px 0; }
strong { color: #ffffff; }
table { width: 100%; border-collapse: collapse; margin: 8px 0; font-size: 12px; }
th {
    text-align: left;
    padding: 6px 10px;
    background: rgba(255,255,255,0.06);
    color: #aaa;
    font-weight: 600;
    border-bottom: 1px solid rgba(255,255,255,0.12);
}
td { padding: 5px 10px; border-bottom: 1px solid rgba(255,255,255,0.05); vertical-align: top; }
tr:hover td { background: rgba(255,255,255,0.03); }
ul { padding-left: 20px; margin: 6px 0; }
li { margin: 2px 0; }
a { color: #5ac8fa; text-decoration: none; }
a:hover { text-decoration: underline; }
</style>
</head>
<body><p>)"_s;
    return text;
}

icu::UnicodeString viewOf(const QString& text) {
    constexpr UBool isTerminated = false;
    return {isTerminated, reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int32_t>(text.size())};
}

/// One rule: a pattern in ICU's dialect, compiled once, and what stands in place of each match.
class Rule {
public:
    Rule(const char16_t* pattern, const char16_t* replacement) : m_replacement(replacement) {
        UErrorCode status = U_ZERO_ERROR;
        m_pattern.reset(icu::RegexPattern::compile(icu::UnicodeString{pattern}, 0, status));
        Q_ASSERT(U_SUCCESS(status));
    }

    /// The text as it was if the engine gives up.
    [[nodiscard]] QString apply(const QString& text) const {
        if (text.size() > std::numeric_limits<int32_t>::max())
            return text;
        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString input = viewOf(text);
        const std::unique_ptr<icu::RegexMatcher> matcher{m_pattern->matcher(input, status)};
        if (U_FAILURE(status))
            return text;
        matcher->setTimeLimit(workLimit, status);
        icu::UnicodeString output;
        // Not by `replaceAll`: that returns what it got until it gave up, and doesn't say so.
        while (matcher->find(status))
            matcher->appendReplacement(output, m_replacement, status);
        if (U_FAILURE(status))
            return text;
        matcher->appendTail(output);
        return QString::fromUtf16(output.getBuffer(), output.length());
    }

private:
    std::unique_ptr<icu::RegexPattern> m_pattern;
    icu::UnicodeString m_replacement;
};

}  // namespace

QString escapeHTML(QString text) {
    // The ampersand first: the other two bring their own.
    text.replace(u"&"_s, u"&amp;"_s);
    text.replace(u"<"_s, u"&lt;"_s);
    text.replace(u">"_s, u"&gt;"_s);
    return text;
}

QString wrapMarkdown(const QString& text) {
    static const Rule heading2{u"(?m)^## (.+)$", u"<h2>$1</h2>"};
    static const Rule heading3{u"(?m)^### (.+)$", u"<h3>$1</h3>"};
    static const Rule bold{u"\\*\\*(.+?)\\*\\*", u"<strong>$1</strong>"};
    static const Rule mail{u"([a-zA-Z0-9._%+-]+@[a-zA-Z0-9.-]+\\.[a-zA-Z]{2,})", u"<a href=\"mailto:$1\">$1</a>"};
    static const Rule telephone{u"(\\+[0-9][0-9 ]{6,15}[0-9])", u"<a href=\"tel:$1\">$1</a>"};
    static const Rule listItem{u"(?m)^- (.+)$", u"<li>$1</li>"};
    static const Rule list{u"((?:<li>.*</li>\\n?)+)", u"<ul>$1</ul>"};
    static const Rule lineBreak{u"(?<!>)\\n(?!<)", u"<br>"};

    // Each rule works on what those before it made of the text, so their order is part of the dialect.
    QString html = escapeHTML(text);
    for (const Rule* const rule : {&heading2, &heading3, &bold, &mail, &telephone})
        html = rule->apply(html);
    html = convertTables(html);
    for (const Rule* const rule : {&listItem, &list})
        html = rule->apply(html);
    html.replace(u"\n\n"_s, u"</p><p>"_s);
    html = lineBreak.apply(html);
    return head() + html + u"</p></body>\n</html>"_s;
}

}  // namespace corvellan::markdown
