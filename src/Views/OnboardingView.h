#pragma once

#include <functional>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QVariantMap>

#include "Base/Tasks.h"
#include "FixedRowsModel.h"

namespace corvellan {

class PermissionChecker;
class Preferences;
class SessionViewModel;
class SystemSettings;

/// View state of the onboarding: five steps that introduce the product to a new user, the last of which asks for
/// the permissions. Main thread.
class OnboardingView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// From 0.
    Q_PROPERTY(int step READ step NOTIFY stepChanged)
    Q_PROPERTY(int totalSteps READ totalStepCount CONSTANT)
    /// "1 of 5".
    Q_PROPERTY(QString progressText READ progressText NOTIFY stepChanged)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY stepChanged)
    Q_PROPERTY(bool isLastStep READ isLastStep NOTIFY stepChanged)

    /// What the step shows: a map with "title", "symbol" (may be empty), "text", "rows" and "note"; rows and note
    /// are as in `GuideView::sections`.
    Q_PROPERTY(QVariantMap page READ page NOTIFY stepChanged)
    /// "Signed in as " and the address, at the first step alone.
    Q_PROPERTY(QString accountText READ accountText NOTIFY accountChanged)

    /// At the last step: rows with "symbol", "title", "detail", "isGranted" and "notice".
    Q_PROPERTY(QAbstractItemModel* permissionCards READ permissionCards CONSTANT)

public:
    static constexpr int totalSteps = 5;

    /// What it is made of; all of it outlives the object.
    struct Parts {
        SessionViewModel& viewModel;
        Preferences& preferences;
        PermissionChecker& permissions;
        SystemSettings& systemSettings;
        std::function<void()> onComplete;
    };

    explicit OnboardingView(Parts parts, QObject* parent = nullptr);
    ~OnboardingView() override;

    [[nodiscard]] int step() const { return m_step; }
    [[nodiscard]] QString progressText() const;
    [[nodiscard]] bool canGoBack() const { return m_step > 0; }
    [[nodiscard]] bool isLastStep() const { return m_step == totalSteps - 1; }
    [[nodiscard]] QVariantMap page() const;
    [[nodiscard]] QString accountText() const;
    [[nodiscard]] bool micGranted() const { return m_micGranted; }
    [[nodiscard]] bool screenGranted() const { return m_screenGranted; }
    [[nodiscard]] FixedRowsModel* permissionCards() { return &m_permissionCards; }

    /// The screen has appeared: starts at the first step.
    Q_INVOKABLE void appear();
    Q_INVOKABLE void back();
    /// Nothing at the last step.
    Q_INVOKABLE void next();
    /// For good: the onboarding does not come again.
    Q_INVOKABLE void finish();
    /// Asks for the permission of a card; where nobody can be asked, leads to where it is decided.
    ///
    /// \param card 0 for the microphone, 1 for the screen.
    Q_INVOKABLE void enable(int card);
    /// Nothing but at the last step.
    Q_INVOKABLE void readPermissions();

Q_SIGNALS:
    void stepChanged();
    void accountChanged();

private:
    [[nodiscard]] static int totalStepCount() { return totalSteps; }
    void setStep(int step);
    void requestMicrophone();
    void updateCards();

    Parts m_parts;
    int m_step = 0;
    bool m_micGranted = false;
    bool m_screenGranted = false;
    /// The microphone was asked for, and refused.
    bool m_isMicRefused = false;
    FixedRowsModel m_permissionCards;
    TaskSlot m_readTask;
    TaskSlot m_requestTask;
};

}  // namespace corvellan
