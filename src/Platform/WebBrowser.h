#pragma once

#include <expected>
#include <QCoroTask>
#include <QUrl>

#include "Base/Error.h"

namespace corvellan {

/// The user's own web browser. Main thread.
class WebBrowser {
public:
    virtual ~WebBrowser() = default;

    /// Opens a page, of scheme "http" or "https". Resumes when the desktop has taken the address over or has
    /// refused it; what becomes of the page then nobody tells.
    virtual QCoro::Task<std::expected<void, Error>> open(QUrl page) = 0;
};

}  // namespace corvellan
