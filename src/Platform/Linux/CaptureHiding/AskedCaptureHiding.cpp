#include "AskedCaptureHiding.h"

#include <cstdint>
#include <optional>
#include <QCoreApplication>
#include <QWindow>

#include "Base/Tasks.h"

namespace corvellan {

using namespace Qt::StringLiterals;

struct AskedCaptureHiding::Core {
    std::unique_ptr<HidingFacility> facility;
    CaptureHidingStatus status;
    std::stop_source stop;
    /// Null once it has gone.
    AskedCaptureHiding* owner = nullptr;
    /// The latest wish, until it has been answered.
    std::optional<HidingRequest> wish;
    /// Counts wishes, so that an answer is known to be the latest one's.
    std::uint64_t number = 0;
    bool isAsking = false;
    /// The desktop was asked to hide the window and has not said since that it is shown.
    bool mayBeHidden = false;

    static QCoro::Task<void> ask(std::shared_ptr<Core> core);
};

AskedCaptureHiding::AskedCaptureHiding(std::unique_ptr<HidingFacility> facility) : m_core(std::make_shared<Core>()) {
    m_core->facility = std::move(facility);
    m_core->owner = this;
    m_core->status = {.offer = CaptureHidingOffer::hides, .explanation = m_core->facility->offer()};
}

AskedCaptureHiding::~AskedCaptureHiding() {
    m_core->owner = nullptr;
    m_core->stop.request_stop();
}

CaptureHidingStatus AskedCaptureHiding::status() const {
    return m_core->status;
}

void AskedCaptureHiding::setHidden(const QWindow& window, bool isHidden) {
    ++m_core->number;
    m_core->wish.reset();
    if (!window.isVisible() || (!isHidden && !m_core->mayBeHidden)) {
        // A window that is not shown is none to the desktop, and will be a new one.
        m_core->mayBeHidden = m_core->mayBeHidden && window.isVisible();
        if (isHidden)
            publish(CaptureVisibility::hiding, u"The window will be hidden when it is shown."_s);
        else
            publish(CaptureVisibility::visible, m_core->facility->offer());
        return;
    }
    m_core->mayBeHidden = true;
    m_core->wish = HidingRequest{
        .processId = QCoreApplication::applicationPid(), .windowTitle = window.title(), .isHidden = isHidden};
    publish(isHidden ? CaptureVisibility::hiding : m_core->status.visibility,
            isHidden ? u"The desktop was asked to hide this window and has not confirmed it yet."_s
                     : m_core->status.explanation);
    if (std::exchange(m_core->isAsking, true))
        return;
    static_cast<void>(CancellableTask::start(
        [core = m_core](const std::stop_token&) -> QCoro::Task<void> { return Core::ask(core); }));
}

QCoro::Task<void> AskedCaptureHiding::Core::ask(std::shared_ptr<Core> core) {
    const std::stop_token stop = core->stop.get_token();
    while (core->wish && !stop.stop_requested()) {
        const HidingRequest request = *core->wish;
        const std::uint64_t number = core->number;
        const HidingAnswer answer = co_await core->facility->apply(request, stop);
        if (!core->owner || core->number != number)
            continue;
        core->wish.reset();
        if (answer.visibility == CaptureVisibility::visible)
            core->mayBeHidden = false;
        if (answer.visibility == CaptureVisibility::unsupported)
            core->status.offer = CaptureHidingOffer::doesNotHide;
        core->owner->publish(answer.visibility, answer.explanation);
    }
    core->isAsking = false;
}

void AskedCaptureHiding::publish(CaptureVisibility visibility, const QString& explanation) {
    CaptureHidingStatus next = m_core->status;
    next.visibility = visibility;
    next.explanation = explanation;
    if (next == m_core->status)
        return;
    m_core->status = std::move(next);
    if (onChanged)
        onChanged();
}

}  // namespace corvellan
