#pragma once

#include <memory>
#include <vector>

#include "Platform/Alerts.h"

class QMessageBox;

namespace corvellan {

/// Alerts as message boxes with a warning sign, above all the program's windows. The program must be a
/// `QApplication`. Boxes still open when this goes are closed, as if the user had closed them.
class MessageBoxAlerts final : public AlertPresenter {
public:
    MessageBoxAlerts();
    ~MessageBoxAlerts() override;
    MessageBoxAlerts(const MessageBoxAlerts&) = delete;
    MessageBoxAlerts& operator=(const MessageBoxAlerts&) = delete;

    QCoro::Task<std::size_t> runModal(Alert alert) override;

private:
    std::vector<std::unique_ptr<QMessageBox>> m_open;
};

}  // namespace corvellan
