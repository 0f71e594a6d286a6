#pragma once

#include <QCoroTask>
#include <QString>
#include <stop_token>

#include "Platform/CaptureHiding.h"

namespace corvellan {

/// What a desktop is asked: to hide the windows of one process with one title, or to show them again.
struct HidingRequest {
    qint64 processId = 0;
    QString windowTitle;
    bool isHidden = false;
};

struct HidingAnswer {
    /// After a request to hide `hidden`, and only if the desktop confirmed it, else why not; after one to
    /// show `visible` or `failed`.
    CaptureVisibility visibility = CaptureVisibility::failed;
    QString explanation;
};

/// One desktop's way to hide a window from capture. Main thread.
class HidingFacility {
public:
    virtual ~HidingFacility() = default;

    /// For the user: what it can do.
    [[nodiscard]] virtual QString offer() const = 0;

    /// Ends in bounded time, whatever the desktop does. One request at a time.
    virtual QCoro::Task<HidingAnswer> apply(HidingRequest request, std::stop_token stop) = 0;
};

}  // namespace corvellan
