#pragma once

#include <expected>
#include <QByteArray>
#include <QCoroTask>
#include <QUrl>
#include <stop_token>

#include "Base/Error.h"

namespace corvellan {

/// What a server answered, as it came.
struct UpdateFeedAnswer {
    QByteArray body;
};

/// Fetches the feed of new versions. Work runs on the service's own executor; callers are resumed on theirs.
class UpdateFeedProtocol {
public:
    virtual ~UpdateFeedProtocol() = default;

    /// One GET. Whatever a server answers counts, an error page too. Fails with `TransportError` when no
    /// whole answer comes, and as cancelled once `stop` is requested.
    virtual QCoro::Task<std::expected<UpdateFeedAnswer, Error>> fetch(QUrl url, std::stop_token stop) = 0;
};

}  // namespace corvellan
