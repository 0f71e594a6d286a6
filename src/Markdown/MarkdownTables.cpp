#include "MarkdownTables.h"

#include <utility>

namespace corvellan::markdown {

using namespace Qt::StringLiterals;

namespace {

constexpr bool isBlank(QChar character) {
    return character == u' ' || character == u'\t';
}

/// Without blanks and tabs at both ends; other white space stays.
QStringView trimmed(QStringView text) {
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

bool isTableRow(QStringView trimmedLine) {
    return trimmedLine.startsWith(u'|') || trimmedLine.contains(u" | "_s);
}

}  // namespace

QStringList splitTableRow(const QString& line, std::optional<qsizetype> maxColumns) {
    QStringView row = trimmed(line);
    if (row.startsWith(u'|'))
        row = row.sliced(1);
    if (row.endsWith(u'|'))
        row.chop(1);
    QStringList cells;
    for (const QStringView cell : row.split(u'|'))
        cells.append(trimmed(cell).toString());
    if (maxColumns && cells.size() > *maxColumns) {
        const auto kept = *maxColumns - 1;
        const QString last = cells.sliced(kept).join(u", "_s);
        cells.resize(kept);
        cells.append(last);
    }
    return cells;
}

QString renderTable(const QStringList& lines) {
    QStringList rows;
    for (const QString& line : lines)
        if (!line.contains(u"---"_s))
            rows.append(line);
    if (rows.isEmpty())
        return {};
    const auto columns = splitTableRow(rows.first()).size();
    QString html = u"<table>"_s;
    QString tag = u"th"_s;
    for (const QString& row : std::as_const(rows)) {
        html += u"<tr>"_s;
        for (const QString& cell : splitTableRow(row, columns))
            html += u'<' + tag + u'>' + cell + u"</"_s + tag + u'>';
        html += u"</tr>"_s;
        tag = u"td"_s;
    }
    return html + u"</table>"_s;
}

QString convertTables(const QString& text) {
    QStringList output;
    QStringList pending;
    const auto flush = [&] {
        if (!pending.isEmpty())
            output.append(renderTable(std::exchange(pending, {})));
    };
    for (const QString& line : text.split(u'\n')) {
        const QStringView row = trimmed(line);
        if (isTableRow(row)) {
            pending.append(row.toString());
        } else {
            flush();
            output.append(line);
        }
    }
    flush();
    return output.join(u'\n');
}

}  // namespace corvellan::markdown
