#include "UrlText.h"

namespace corvellan {

using namespace Qt::StringLiterals;

QString urlForLog(const QUrl& url) {
    QString text = url.toString(QUrl::FullyEncoded);
    if (!url.hasQuery())
        return text;
    const qsizetype queryStart = text.indexOf(u'?') + 1;
    const qsizetype hash = text.indexOf(u'#', queryStart);
    const qsizetype queryEnd = hash < 0 ? text.size() : hash;

    QStringList items = text.sliced(queryStart, queryEnd - queryStart).split(u'&');
    for (QString& item : items) {
        const qsizetype equals = item.indexOf(u'=');
        if (equals >= 0 && QUrl::fromPercentEncoding(item.first(equals).toUtf8()) == u"token")
            item = item.first(equals) + u"=***"_s;
    }
    return text.first(queryStart) + items.join(u'&') + text.sliced(queryEnd);
}

}  // namespace corvellan
