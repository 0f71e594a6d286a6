#pragma once

#include <chrono>

#include "Base/Clock.h"
#include "Platform/WebBrowser.h"

namespace corvellan {

/// The browser that `xdg-open` finds. It outlives the program that asked for it.
class XdgWebBrowser final : public WebBrowser {
public:
    /// Where no desktop takes the address over, `xdg-open` becomes the browser itself and does not end: a
    /// failure comes earlier than this.
    static constexpr std::chrono::seconds patience{10};

    /// In bytes. A program's argument ends at 128 KiB.
    static constexpr qsizetype longestAddress = 120'000;

    /// \param clock outlives everything that was opened.
    explicit XdgWebBrowser(Clock& clock) : m_clock(clock) {}

    QCoro::Task<std::expected<void, Error>> open(QUrl page) override;
    QCoro::Task<std::expected<void, Error>> openContact(QUrl link) override;
    QCoro::Task<std::expected<void, Error>> composeMail(QString subject, QString text) override;

private:
    /// \param refusal what to say when nothing takes it; "%1" is the status that `xdg-open` ended with.
    QCoro::Task<std::expected<void, Error>> handOver(QString address, QString refusal);

    Clock& m_clock;
};

}  // namespace corvellan
