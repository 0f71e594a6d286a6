#pragma once

#include <expected>

#include "Base/Clock.h"
#include "Base/Error.h"
#include "HidingFacility.h"

namespace corvellan {

/// Hyprland from 0.50 on: sets the property behind the window rule `no_screen_share` on our window alone,
/// through the compositor's socket, and reads it back.
class HyprlandFacility final : public HidingFacility {
public:
    /// How long a window that was just shown may take to appear in the compositor's list.
    static constexpr std::chrono::seconds windowPatience{3};
    static constexpr std::chrono::milliseconds windowPollInterval{100};

    /// \param clock outlives it.
    HyprlandFacility(QString socketPath, Clock& clock);

    [[nodiscard]] QString offer() const override;
    QCoro::Task<HidingAnswer> apply(HidingRequest request, std::stop_token stop) override;

private:
    using Addresses = std::expected<std::vector<QByteArray>, Error>;

    QCoro::Task<Addresses> findWindows(HidingRequest request, std::stop_token stop);
    QCoro::Task<HidingAnswer> applyTo(QByteArray address, bool isHidden, std::stop_token stop);

    QString m_socketPath;
    Clock& m_clock;
};

}  // namespace corvellan
