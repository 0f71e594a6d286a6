#include "ScreenShareService.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "Base/Log.h"
#include "Base/Tasks.h"
#include "FrameHash.h"
#include "FrameJpeg.h"
#include "FrameUpload.h"
#include "FrontmostWindow.h"
#include "Platform/ScreenCapture.h"
#include "ScreenShareError.h"

namespace corvellan {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto firstDelay = 1s;

std::chrono::nanoseconds pauseOf(double seconds) {
    constexpr double longest = 24 * 3600;
    // Also for what is no number.
    const double bounded = seconds > 0 ? std::min(seconds, longest) : 0;
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>{bounded});
}

/// What one start has begun. A tick that a stop or another start has overtaken keeps its own.
struct Run {
    QUrl url;
    std::optional<QString> authToken;
    ScreenShareOptions options;
    std::shared_ptr<ScreenCapture> capture;
    /// Of the last frame that the server took.
    std::optional<std::uint64_t> previousHash;
};

QCoro::Task<std::expected<QImage, Error>> captureFrame(std::shared_ptr<Run> run, std::int64_t ownProcessId,
                                                       std::stop_token stop) {
    const auto content = co_await run->capture->content(stop);
    if (!content)
        co_return std::unexpected(content.error());
    if (content->displays.empty())
        co_return std::unexpected(ScreenShareError{.kind = ScreenShareError::Kind::noDisplay});
    if (run->options.scope == ScreenShareOptions::CaptureScope::activeWindow) {
        const auto window = pickFrontmostWindow(*content, ownProcessId);
        if (window)
            co_return co_await run->capture->windowPicture(*window, stop);
    }
    const ShareableDisplay display = content->displays.front();
    co_return co_await run->capture->displayPicture(display, stop);
}

}  // namespace

/// What the executor alone touches.
struct ScreenShareService::State {
    explicit State(Environment all) : environment(all) {}

    const Environment environment;
    const Logger logger{"ScreenShare"};
    TaskSlot loopTask;

    void start(const QString& sessionId, const QString& httpBase, std::optional<QString> authToken,
               ScreenShareOptions options, const std::shared_ptr<State>& self);
    static QCoro::Task<void> loop(Clock& clock, std::weak_ptr<State> weak, std::shared_ptr<Run> run,
                                  std::stop_token stop);
    static QCoro::Task<void> tick(std::shared_ptr<State> state, std::shared_ptr<Run> run, std::stop_token stop);
};

void ScreenShareService::State::start(const QString& sessionId, const QString& httpBase,
                                      std::optional<QString> authToken, ScreenShareOptions options,
                                      const std::shared_ptr<State>& self) {
    loopTask.clear();
    const auto url = frameUploadUrl(httpBase, sessionId);
    if (!url) {
        logger.error(u"invalid http base: "_s + httpBase);
        return;
    }
    constexpr int decimals = 6;
    logger.info(
        u"start session=%1 interval=%2s"_s.arg(sessionId, QString::number(options.intervalSeconds, 'f', decimals)));
    const auto run = std::make_shared<Run>(Run{
        .url = *url, .authToken = std::move(authToken), .options = options, .capture = environment.captures.open()});
    loopTask = CancellableTask::start([&clock = environment.clock, weak = std::weak_ptr{self},
                                       run](std::stop_token stop) { return loop(clock, weak, run, std::move(stop)); });
}

QCoro::Task<void> ScreenShareService::State::loop(Clock& clock, std::weak_ptr<State> weak, std::shared_ptr<Run> run,
                                                  std::stop_token stop) {
    const auto interval = pauseOf(run->options.intervalSeconds);
    co_await sleep(clock, firstDelay, stop);
    while (!stop.stop_requested()) {
        if (const auto state = weak.lock())
            co_await tick(state, run, stop);
        co_await sleep(clock, interval, stop);
    }
}

QCoro::Task<void> ScreenShareService::State::tick(std::shared_ptr<State> state, std::shared_ptr<Run> run,
                                                  std::stop_token stop) {
    const auto& [executor, worker, clock, http, captures, ownProcessId] = state->environment;
    const auto frame = co_await captureFrame(run, ownProcessId, stop);
    // Who has switched it off meanwhile is not pictured any more, and wants to hear no more of it.
    if (stop.stop_requested())
        co_return;
    if (!frame) {
        state->logger.error(u"capture failed: "_s + frame.error().errorDescription());
        co_return;
    }
    const QImage picture = *frame;
    const auto hash = co_await worker.call([picture] { return dHash(picture); });
    if (run->previousHash && hammingDistance(hash, *run->previousHash) < run->options.changeThreshold)
        co_return;
    const auto options = run->options;
    auto jpeg = co_await worker.call(
        [picture, options] { return encodeJPEG(picture, options.maxDimension, options.jpegQuality); });
    if (stop.stop_requested())
        co_return;
    if (!jpeg) {
        state->logger.error(u"jpeg encode failed"_s);
        co_return;
    }
    const auto size = jpeg->size();
    const auto request = frameUpload(run->url, run->authToken, hash, std::move(*jpeg));
    const auto answer = co_await http.send(request, {});
    const auto result = frameUploadResult(answer);
    if (!result) {
        state->logger.error(u"upload failed: "_s + result.error().errorDescription());
        co_return;
    }
    run->previousHash = hash;
    state->logger.info(u"frame uploaded bytes=%1 hash=0x%2"_s.arg(QString::number(size), QString::number(hash, 16)));
}

ScreenShareService::ScreenShareService(Environment environment) : m_state(std::make_shared<State>(environment)) {}

ScreenShareService::~ScreenShareService() {
    // Whoever waits goes on by itself, and finds the service gone.
    runAndWait(m_state->environment.executor, [this] { m_state->loopTask.clear(); });
}

QCoro::Task<void> ScreenShareService::start(QString sessionId, QString httpBase, std::optional<QString> authToken,
                                            ScreenShareOptions options) {
    return m_state->environment.executor.call([state = m_state, sessionId, httpBase, authToken, options] {
        state->start(sessionId, httpBase, authToken, options, state);
    });
}

QCoro::Task<void> ScreenShareService::stop() {
    return m_state->environment.executor.call([state = m_state] { state->loopTask.clear(); });
}

QCoro::Task<bool> ScreenShareService::isRunning() {
    return m_state->environment.executor.call([state = m_state] { return state->loopTask.isSet(); });
}

}  // namespace corvellan
