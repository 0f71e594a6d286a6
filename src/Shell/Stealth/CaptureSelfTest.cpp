#include "CaptureSelfTest.h"

#include "Base/Tasks.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

CaptureTestResult couldNotCapture(const QString& reason) {
    return {CaptureTestOutcome::couldNotCapture, reason};
}

}  // namespace

struct CaptureSelfTest::Core {
    Means means;
    /// Null once it has gone.
    CaptureSelfTest* owner = nullptr;
    CaptureMarkerWindow& window;
    std::stop_source stop;
    std::stop_source painting;
    bool isRunning = false;
    std::optional<CaptureTestResult> result;

    static QCoro::Task<void> run(std::shared_ptr<Core> core);
    /// The window is touched only while the owner lives.
    static QCoro::Task<CaptureTestResult> test(std::shared_ptr<Core> core);

    void clearMarker() const {
        if (owner)
            window.clearMarker();
    }
    void notify() const {
        if (owner && owner->onChanged)
            owner->onChanged();
    }
};

CaptureSelfTest::CaptureSelfTest(Means means, CaptureMarkerWindow& window)
    : m_core(std::make_shared<Core>(Core{.means = means, .owner = this, .window = window})) {}

CaptureSelfTest::~CaptureSelfTest() {
    m_core->clearMarker();
    m_core->owner = nullptr;
    m_core->stop.request_stop();
    m_core->painting.request_stop();
}

bool CaptureSelfTest::isRunning() const {
    return m_core->isRunning;
}

std::optional<CaptureTestResult> CaptureSelfTest::result() const {
    return m_core->result;
}

void CaptureSelfTest::run() {
    if (std::exchange(m_core->isRunning, true))
        return;
    m_core->result.reset();
    m_core->notify();
    static_cast<void>(CancellableTask::start(
        [core = m_core](const std::stop_token&) -> QCoro::Task<void> { return Core::run(core); }));
}

QCoro::Task<void> CaptureSelfTest::Core::run(std::shared_ptr<Core> core) {
    CaptureTestResult result = co_await test(core);
    core->clearMarker();
    core->isRunning = false;
    core->result = std::move(result);
    core->notify();
}

QCoro::Task<CaptureTestResult> CaptureSelfTest::Core::test(std::shared_ptr<Core> core) {
    if (!core->owner)
        co_return couldNotCapture({});
    const CaptureMarker marker = CaptureMarker::random();
    core->painting = {};
    const bool isPainting = core->window.showMarker(marker, [weak = std::weak_ptr{core}, painting = core->painting] {
        // The painting's end, early or late, is all that is told.
        if (const auto alive = weak.lock(); alive && alive->painting == painting)
            alive->painting.request_stop();
    });
    if (!isPainting)
        co_return couldNotCapture(u"This window is not shown, so there was nothing to look for."_s);
    const std::stop_token painting = core->painting.get_token();
    if (co_await sleep(core->means.clock, paintPatience, painting) == SleepEnd::elapsed)
        co_return couldNotCapture(u"This window was not painted in time."_s);
    const std::stop_token stop = core->stop.get_token();
    co_await sleep(core->means.clock, screenDelay, stop);
    if (stop.stop_requested())
        co_return couldNotCapture({});

    auto picture = co_await core->means.pictures.takePicture(stop);
    core->clearMarker();
    if (!picture || stop.stop_requested())
        co_return couldNotCapture(picture ? QString{} : picture.error().errorDescription());
    const auto judge = [marker, image = *std::move(picture)]() -> CaptureTestResult {
        if (isBlank(image))
            return couldNotCapture(u"The picture of the screen was empty."_s);
        return {marker.isIn(image) ? CaptureTestOutcome::visible : CaptureTestOutcome::notVisible, {}};
    };
    co_return co_await core->means.worker.call(judge);
}

}  // namespace corvellan
