#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QColor>
#include <QList>
#include <QObject>
#include <QQmlEngine>
#include <QString>

#include "Platform/CaptureHiding.h"
#include "Shell/Stealth/CaptureSelfTest.h"

namespace corvellan {

class SessionViewModel;

/// View state of everything that tells whether the window is hidden from screen sharing: the stealth control with
/// the warning beside it, and the settings. Nothing here says hidden unless the desktop has confirmed it. Main
/// thread.
class StealthView : public QObject, private CaptureMarkerWindow {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// The desktop has a facility that the program can use by itself.
    Q_PROPERTY(bool isAvailable READ isAvailable NOTIFY stateChanged)
    Q_PROPERTY(bool isStealthOn READ isStealthOn NOTIFY stateChanged)
    /// Stealth is on, and the window is not confirmed hidden.
    Q_PROPERTY(bool hasWarning READ hasWarning NOTIFY stateChanged)
    /// What the warning means, in whole sentences. Empty without one.
    Q_PROPERTY(QString warningText READ warningText NOTIFY stateChanged)
    /// The warning once it is certain: empty while the desktop has yet to answer, so that nobody is alarmed for
    /// an instant.
    Q_PROPERTY(QString alertText READ alertText NOTIFY stateChanged)
    /// What pressing the stealth control does, and whether that will hide the window.
    Q_PROPERTY(QString controlTip READ controlTip NOTIFY stateChanged)
    Q_PROPERTY(QString controlSymbol READ controlSymbol NOTIFY stateChanged)
    /// How things stand, in whole sentences.
    Q_PROPERTY(QString statusText READ statusText NOTIFY stateChanged)
    /// Lines for the desktop's configuration, to be shown as they are and copied. Empty where none help.
    Q_PROPERTY(QString adviceText READ adviceText CONSTANT)

    // The test whether a picture of the screen shows the window.
    Q_PROPERTY(bool canTest READ canTest NOTIFY testChanged)
    Q_PROPERTY(bool isTesting READ isTesting NOTIFY testChanged)
    /// Empty before the first test.
    Q_PROPERTY(QString testResultText READ testResultText NOTIFY testChanged)
    /// The cells of the code to paint, row by row; empty when there is none.
    Q_PROPERTY(QList<QColor> markerColors READ markerColors NOTIFY markerChanged)
    Q_PROPERTY(int markerColumns READ markerColumns CONSTANT)
    Q_PROPERTY(int markerCellSize READ markerCellSize CONSTANT)

public:
    /// Calls what it is given once, after the next frame of the window; false, and no call, when the window is
    /// not shown.
    using AfterNextFrame = std::function<bool(std::function<void()>)>;

    /// Takes the `onChanged` of `captureHiding` for as long as it lives. All of it outlives the object.
    ///
    /// \param selfTest absent where the screen can't be pictured: then nothing is tested.
    StealthView(SessionViewModel& session, CaptureHiding& captureHiding,
                std::optional<CaptureSelfTest::Means> selfTest = std::nullopt, AfterNextFrame afterNextFrame = {},
                QObject* parent = nullptr);
    ~StealthView() override;

    [[nodiscard]] bool isAvailable() const;
    [[nodiscard]] bool isStealthOn() const;
    [[nodiscard]] bool hasWarning() const;
    [[nodiscard]] QString warningText() const;
    [[nodiscard]] QString alertText() const;
    [[nodiscard]] QString controlTip() const;
    [[nodiscard]] QString controlSymbol() const;
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] QString adviceText() const;
    [[nodiscard]] bool canTest() const;
    [[nodiscard]] bool isTesting() const;
    [[nodiscard]] QString testResultText() const;
    [[nodiscard]] const QList<QColor>& markerColors() const { return m_markerColors; }
    [[nodiscard]] static int markerColumns();
    [[nodiscard]] static int markerCellSize();

    Q_INVOKABLE void toggle();
    /// Nothing happens while one runs or where none can.
    Q_INVOKABLE void runSelfTest();

Q_SIGNALS:
    void stateChanged();
    void testChanged();
    void markerChanged();

private:
    bool showMarker(const CaptureMarker& marker, std::function<void()> onShown) override;
    void clearMarker() override;
    void setMarkerColors(QList<QColor> colors);

    SessionViewModel& m_session;
    CaptureHiding& m_captureHiding;
    AfterNextFrame m_afterNextFrame;
    QList<QColor> m_markerColors;
    std::unique_ptr<CaptureSelfTest> m_selfTest;
};

}  // namespace corvellan
