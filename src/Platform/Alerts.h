#pragma once

#include <QCoroTask>
#include <QString>
#include <vector>

namespace corvellan {

struct Alert {
    QString messageText;
    QString informativeText;
    /// The first is the one that Enter presses, the last the one for Escape.
    std::vector<QString> buttonTitles;
};

/// Questions that block the program's windows until they are answered. Main thread.
class AlertPresenter {
public:
    virtual ~AlertPresenter() = default;

    /// Resumes with the index of the pressed button; of the last one when the alert was closed otherwise.
    virtual QCoro::Task<std::size_t> runModal(Alert alert) = 0;
};

}  // namespace corvellan
