#pragma once

#include <functional>

#include "Platform/ScreenCapture.h"
#include "TestLoop.h"

namespace corvellan::test {

/// A desktop of the test's making. Answers on the main thread, whoever asks, and keeps what was pictured.
class FakeScreenCaptures final : public ScreenCaptures {
public:
    [[nodiscard]] bool seesWindows() const override { return true; }
    struct Pictured {
        enum class Kind { window, display };

        Kind kind = Kind::display;
        std::uint32_t id = 0;

        bool operator==(const Pictured&) const = default;
    };

    /// As long as the captures that it has opened.
    struct Desktop {
        ShareableContent content{.displays = {{.id = 1, .frame = {0, 0, 640, 480}}}};
        std::optional<Error> contentError;
        std::optional<Error> pictureError;
        QImage picture;
        std::vector<Pictured> pictured;
        /// Called before each picture.
        std::function<void()> onPicture = [] {};
        int opened = 0;
    };

    [[nodiscard]] std::shared_ptr<ScreenCapture> open() override {
        ++desktop->opened;
        return std::make_shared<Capture>(desktop);
    }

    std::shared_ptr<Desktop> desktop = std::make_shared<Desktop>();

private:
    class Capture final : public ScreenCapture {
    public:
        explicit Capture(std::shared_ptr<Desktop> desktop) : m_desktop(std::move(desktop)) {}

        QCoro::Task<std::expected<ShareableContent, Error>> content(std::stop_token /*stop*/) override {
            using Result = std::expected<ShareableContent, Error>;
            return mainExecutor().call([desktop = m_desktop] {
                return desktop->contentError ? Result{std::unexpected(*desktop->contentError)} : desktop->content;
            });
        }
        QCoro::Task<std::expected<QImage, Error>> windowPicture(ShareableWindow window,
                                                                std::stop_token /*stop*/) override {
            return picture({.kind = Pictured::Kind::window, .id = window.id});
        }
        QCoro::Task<std::expected<QImage, Error>> displayPicture(ShareableDisplay display,
                                                                 std::stop_token /*stop*/) override {
            return picture({.kind = Pictured::Kind::display, .id = display.id});
        }

    private:
        QCoro::Task<std::expected<QImage, Error>> picture(Pictured what) {
            using Result = std::expected<QImage, Error>;
            return mainExecutor().call([desktop = m_desktop, what] {
                desktop->pictured.push_back(what);
                desktop->onPicture();
                return desktop->pictureError ? Result{std::unexpected(*desktop->pictureError)} : desktop->picture;
            });
        }

        std::shared_ptr<Desktop> m_desktop;
    };
};

}  // namespace corvellan::test
