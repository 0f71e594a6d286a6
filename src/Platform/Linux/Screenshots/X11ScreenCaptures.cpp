#include "X11ScreenCaptures.h"

#include "Base/Tasks.h"
#include "X11Display.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using Picture = std::expected<QImage, Error>;
using Content = std::expected<ShareableContent, Error>;

std::unexpected<Error> lost() {
    return std::unexpected(Error{TransportError{u"The X server can't be reached."_s}});
}

/// What the worker alone touches. Questions under way hold on to it.
struct Core {
    Executor& worker;
    Clock& clock;
    QByteArray name;
    std::unique_ptr<X11Display> display;

    /// Null when there is no server.
    X11Display* reached() {
        if (display && display->isLost())
            display.reset();
        if (!display)
            display = X11Display::open(name);
        return display.get();
    }
    /// What it gave before it was lost is not to be trusted.
    template <typename Result>
    Result checked(Result result) const {
        return display->isLost() ? Result{lost()} : result;
    }
};

QCoro::Task<Picture> pictureOf(std::shared_ptr<Core> core, std::uint32_t window, std::stop_token stop) {
    X11Display* const display = core->reached();
    if (!display)
        co_return lost();
    if (display->keepWhole(window) &&
        co_await sleep(core->clock, X11ScreenCaptures::drawPatience, stop) == SleepEnd::interrupted)
        co_return std::unexpected(Error::cancelled());
    co_return core->checked(display->windowPicture(window));
}

class X11ScreenCapture final : public ScreenCapture {
public:
    explicit X11ScreenCapture(std::shared_ptr<Core> core) : m_core(std::move(core)) {}

    QCoro::Task<Content> content(std::stop_token /*stop*/) override {
        return m_core->worker.call([core = m_core] {
            X11Display* const display = core->reached();
            return display ? core->checked<Content>(display->content()) : Content{lost()};
        });
    }
    QCoro::Task<Picture> windowPicture(ShareableWindow window, std::stop_token stop) override {
        return m_core->worker.run([core = m_core, id = window.id, stop] { return pictureOf(core, id, stop); });
    }
    QCoro::Task<Picture> displayPicture(ShareableDisplay display, std::stop_token /*stop*/) override {
        return m_core->worker.call([core = m_core, area = display.frame] {
            X11Display* const server = core->reached();
            return server ? core->checked(server->screenPicture(area)) : Picture{lost()};
        });
    }

private:
    std::shared_ptr<Core> m_core;
};

}  // namespace

X11ScreenCaptures::X11ScreenCaptures(Executor& worker, Clock& clock, QByteArray display)
    : m_worker(worker),
      m_clock(clock),
      m_display(std::move(display)) {}

std::shared_ptr<ScreenCapture> X11ScreenCaptures::open() {
    return std::make_shared<X11ScreenCapture>(
        std::make_shared<Core>(Core{.worker = m_worker, .clock = m_clock, .name = m_display, .display = nullptr}));
}

}  // namespace corvellan
