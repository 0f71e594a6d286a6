#pragma once

#include <expected>
#include <QCoroTask>
#include <QString>
#include <QUrl>

#include "Base/Error.h"

namespace corvellan {

/// The user's own web browser, and the programs for mail and telephone beside it. Main thread.
class WebBrowser {
public:
    virtual ~WebBrowser() = default;

    /// Opens a page, of scheme "http" or "https". Resumes when the desktop has taken the address over or has
    /// refused it; what becomes of the page then nobody tells.
    virtual QCoro::Task<std::expected<void, Error>> open(QUrl page) = 0;

    /// Begins a mail or a telephone call: a "mailto" link with one plain address and nothing else, or a "tel" link.
    /// As above, the desktop has then taken it over or has refused it.
    virtual QCoro::Task<std::expected<void, Error>> openContact(QUrl link) = 0;

    /// Begins a mail with a subject and a text, to nobody yet. As above. Refused for a text that is longer than
    /// desktops hand over, which is about a hundred kilobytes.
    virtual QCoro::Task<std::expected<void, Error>> composeMail(QString subject, QString text) = 0;
};

}  // namespace corvellan
