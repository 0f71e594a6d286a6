#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Markdown/MarkdownHtml.h"

using namespace corvellan;
using namespace Qt::StringLiterals;

namespace {

/// Takes one tag of the dialect, or one link's beginning, off the front. False for any other.
bool takeTag(QStringView& rest) {
    for (const QStringView tag :
         {u"<h2>"_s,     u"</h2>"_s, u"<h3>"_s,  u"</h3>"_s, u"<strong>"_s, u"</strong>"_s, u"</a>"_s,  u"<table>"_s,
          u"</table>"_s, u"<tr>"_s,  u"</tr>"_s, u"<th>"_s,  u"</th>"_s,    u"<td>"_s,      u"</td>"_s, u"<li>"_s,
          u"</li>"_s,    u"<ul>"_s,  u"</ul>"_s, u"<p>"_s,   u"</p>"_s,     u"<br>"_s})
        if (rest.startsWith(tag)) {
            rest = rest.sliced(tag.size());
            return true;
        }
    for (const QStringView link : {u"<a href=\"mailto:"_s, u"<a href=\"tel:"_s})
        if (rest.startsWith(link)) {
            rest = rest.sliced(link.size());
            const auto end = rest.indexOf(u"\">"_s);
            if (end < 0 || rest.first(end).contains(u'"') || rest.first(end).contains(u'<'))
                return false;
            rest = rest.sliced(end + 2);
            return true;
        }
    return false;
}

}  // namespace

// Whatever a note holds, its HTML has no tag and no address but the dialect's own.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString note = QString::fromUtf8(QByteArrayView{data, static_cast<qsizetype>(size)});
    const QString html = markdown::wrapMarkdown(note);
    const auto start = html.indexOf(u"<body><p>"_s) + 9;
    const QStringView end = u"</p></body>\n</html>";
    if (!html.endsWith(end))
        std::abort();
    QStringView rest = QStringView{html}.sliced(start).chopped(end.size());
    while (!rest.isEmpty()) {
        const QChar next = rest.front();
        if (next == u'<') {
            if (!takeTag(rest))
                std::abort();
        } else if (next == u'>') {
            std::abort();
        } else {
            rest = rest.sliced(1);
        }
    }
    return 0;
}
