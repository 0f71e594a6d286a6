#pragma once

#include <map>
#include <QString>

#include "Platform/CaptureHiding.h"

namespace corvellan::test {

/// A desktop that says about hiding whatever the test wants.
class FakeDesktopHiding final : public CaptureHiding {
public:
    void setHidden(const QWindow& /*window*/, bool /*isHidden*/) override {}
    [[nodiscard]] CaptureHidingStatus status() const override { return m_status; }

    void set(CaptureHidingStatus status) {
        m_status = std::move(status);
        if (onChanged)
            onChanged();
    }
    /// By the case's name.
    void setOffer(const QString& offer, const QString& explanation) {
        static const std::map<QString, CaptureHidingOffer> offers{
            {QStringLiteral("hides"), CaptureHidingOffer::hides},
            {QStringLiteral("doesNotHide"), CaptureHidingOffer::doesNotHide},
            {QStringLiteral("needsConfiguration"), CaptureHidingOffer::needsConfiguration},
        };
        set({offers.at(offer), m_status.visibility, explanation, m_status.configuration});
    }
    void setVisibility(const QString& visibility, const QString& explanation) {
        static const std::map<QString, CaptureVisibility> visibilities{
            {QStringLiteral("visible"), CaptureVisibility::visible},
            {QStringLiteral("hiding"), CaptureVisibility::hiding},
            {QStringLiteral("hidden"), CaptureVisibility::hidden},
            {QStringLiteral("unsupported"), CaptureVisibility::unsupported},
            {QStringLiteral("needsConfiguration"), CaptureVisibility::needsConfiguration},
            {QStringLiteral("failed"), CaptureVisibility::failed},
        };
        set({m_status.offer, visibilities.at(visibility), explanation, m_status.configuration});
    }

private:
    CaptureHidingStatus m_status{.offer = CaptureHidingOffer::hides, .explanation = QStringLiteral("It can.")};
};

}  // namespace corvellan::test
