#include "PortalScreenCaptures.h"

#include "PortalScreenPictures.h"
#include "ScreenshotRefused.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using Picture = std::expected<QImage, Error>;
using Content = std::expected<ShareableContent, Error>;

/// What the main thread alone touches. Questions under way hold on to it.
struct Core {
    PortalScreenPictures pictures;
    std::optional<Error> refusal;
};

QCoro::Task<Picture> take(std::shared_ptr<Core> core, std::stop_token stop) {
    if (core->refusal)
        co_return std::unexpected(*core->refusal);
    auto picture = co_await core->pictures.takePicture(std::move(stop));
    if (!picture && picture.error().as<ScreenshotRefused>())
        core->refusal = picture.error();
    co_return picture;
}

class PortalScreenCapture final : public ScreenCapture {
public:
    PortalScreenCapture(Executor& main, std::shared_ptr<Core> core) : m_main(main), m_core(std::move(core)) {}

    QCoro::Task<Content> content(std::stop_token /*stop*/) override {
        co_return ShareableContent{.displays = {ShareableDisplay{}}};
    }
    QCoro::Task<Picture> windowPicture(ShareableWindow /*window*/, std::stop_token /*stop*/) override {
        co_return std::unexpected(Error{TransportError{u"This desktop pictures no single windows."_s}});
    }
    QCoro::Task<Picture> displayPicture(ShareableDisplay /*display*/, std::stop_token stop) override {
        return m_main.run([core = m_core, stop] { return take(core, stop); });
    }

private:
    Executor& m_main;
    std::shared_ptr<Core> m_core;
};

}  // namespace

PortalScreenCaptures::PortalScreenCaptures(QDBusConnection bus, Executor& main, Executor& worker, Clock& clock)
    : m_bus(std::move(bus)),
      m_main(main),
      m_worker(worker),
      m_clock(clock) {}

std::shared_ptr<ScreenCapture> PortalScreenCaptures::open() {
    const auto core =
        std::make_shared<Core>(Core{.pictures = PortalScreenPictures{m_bus, m_worker, m_clock}, .refusal = {}});
    return std::make_shared<PortalScreenCapture>(m_main, core);
}

}  // namespace corvellan
