#pragma once

#include <algorithm>
#include <expected>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Base/AsyncStream.h"
#include "CallLog.h"
#include "FakeSpeechSynthesizer.h"
#include "Platform/Alerts.h"
#include "Platform/DesktopAppearance.h"
#include "Platform/GlobalKeys.h"
#include "Platform/LoginItems.h"
#include "Platform/Notifications.h"
#include "Platform/Permissions.h"
#include "Platform/StatusBar.h"
#include "Platform/WebBrowser.h"
#include "Platform/WindowActivation.h"
#include "TestLoop.h"

/// Stand-ins for what a desktop gives, at the line that `Platform` draws. They live on the main thread, do at
/// once what they are asked, note it in one log, and can be told to fail or to keep the caller waiting.
namespace corvellan::test {

class FakeNotificationCenter final : public NotificationCenter {
public:
    explicit FakeNotificationCenter(CallLog& log) : m_log(log) {}

    QCoro::Task<NotificationAuthorization> requestAuthorization() override {
        m_log.emplace_back("notifications.requestAuthorization");
        co_await requestGate.pass();
        co_return granted;
    }
    QCoro::Task<NotificationAuthorization> authorization() override {
        m_log.emplace_back("notifications.authorization");
        co_return granted;
    }
    void setCategory(NotificationCategory category) override {
        m_log.emplace_back("notifications.setCategory");
        categories.push_back(std::move(category));
    }
    void add(NotificationRequest request) override {
        m_log.emplace_back("notifications.add");
        requests.push_back(std::move(request));
    }

    /// The user answers the notification that was added last.
    void answer(const QString& actionIdentifier, const QString& activationToken = {}) const {
        if (didReceive && !requests.empty())
            didReceive({.actionIdentifier = actionIdentifier,
                        .userInfo = requests.back().userInfo,
                        .activationToken = activationToken});
    }

    NotificationAuthorization granted = NotificationAuthorization::authorized;
    Gate requestGate;
    std::vector<NotificationCategory> categories;
    std::vector<NotificationRequest> requests;

private:
    CallLog& m_log;
};

/// May go before its monitors.
class FakeGlobalKeys final : public GlobalKeys {
public:
    explicit FakeGlobalKeys(CallLog& log) : m_state(std::make_shared<State>(log)) {}

    std::unique_ptr<GlobalKeyMonitor> addGlobalMonitor(std::function<void(const KeyDown&)> onKeyDown) override {
        m_state->log.emplace_back("keys.addGlobalMonitor");
        return std::make_unique<Monitor>(m_state, std::move(onKeyDown));
    }

    /// A key goes down in some program. False when nobody watches.
    bool press(const KeyDown& key) const {
        // A handler may add or remove monitors.
        const auto monitors = m_state->monitors;
        for (Monitor* const monitor : monitors)
            if (std::ranges::find(m_state->monitors, monitor) != m_state->monitors.end())
                monitor->onKeyDown(key);
        return !monitors.empty();
    }

    /// What all monitors answer from now on.
    void setWatch(GlobalKeyWatch watch, const QString& explanation) {
        m_state->watch = watch;
        m_state->explanation = explanation;
        for (Monitor* const monitor : std::vector{m_state->monitors})
            if (monitor->onChanged)
                monitor->onChanged();
    }

    [[nodiscard]] std::size_t monitorCount() const { return m_state->monitors.size(); }

private:
    class Monitor;

    struct State {
        explicit State(CallLog& callLog) : log(callLog) {}
        CallLog& log;
        std::vector<Monitor*> monitors;
        GlobalKeyWatch watch = GlobalKeyWatch::watching;
        QString explanation;
    };

    class Monitor final : public GlobalKeyMonitor {
    public:
        Monitor(std::shared_ptr<State> state, std::function<void(const KeyDown&)> keyDown)
            : onKeyDown(std::move(keyDown)),
              m_state(std::move(state)) {
            m_state->monitors.push_back(this);
        }
        ~Monitor() override {
            m_state->log.emplace_back("keys.removeMonitor");
            std::erase(m_state->monitors, this);
        }
        [[nodiscard]] GlobalKeyWatch watch() const override { return m_state->watch; }
        [[nodiscard]] QString explanation() const override { return m_state->explanation; }

        const std::function<void(const KeyDown&)> onKeyDown;

    private:
        std::shared_ptr<State> m_state;
    };

    std::shared_ptr<State> m_state;
};

/// What one status item shows at present.
struct ShownStatusItem {
    bool isThere = true;
    QString symbol;
    QString accessibilityDescription;
    std::vector<StatusMenuItem> menu;
    /// Every symbol it had, in order.
    std::vector<QString> symbols;
};

class FakeStatusBar final : public StatusBar {
public:
    explicit FakeStatusBar(CallLog& log) : m_log(log) {}

    std::unique_ptr<StatusItem> makeStatusItem() override {
        m_log.emplace_back("statusBar.makeStatusItem");
        if (!hasItems)
            return nullptr;
        items.push_back(std::make_shared<ShownStatusItem>());
        return std::make_unique<Item>(m_log, items.back());
    }
    [[nodiscard]] bool isShown() const override { return isBarShown; }

    bool hasItems = true;
    bool isBarShown = true;
    /// One each that was made, in order, those that are gone included.
    std::vector<std::shared_ptr<ShownStatusItem>> items;

private:
    class Item final : public StatusItem {
    public:
        Item(CallLog& log, std::shared_ptr<ShownStatusItem> shown) : m_log(log), m_shown(std::move(shown)) {}
        ~Item() override {
            m_log.emplace_back("statusItem.remove");
            m_shown->isThere = false;
        }
        void setImage(const QString& symbol, const QString& accessibilityDescription) override {
            m_log.emplace_back("statusItem.setImage");
            m_shown->symbol = symbol;
            m_shown->accessibilityDescription = accessibilityDescription;
            m_shown->symbols.push_back(symbol);
        }
        void setMenu(std::vector<StatusMenuItem> menu) override {
            m_log.emplace_back("statusItem.setMenu");
            m_shown->menu = std::move(menu);
        }

    private:
        CallLog& m_log;
        std::shared_ptr<ShownStatusItem> m_shown;
    };

    CallLog& m_log;
};

class FakeLoginItems final : public LoginItems {
public:
    explicit FakeLoginItems(CallLog& log) : m_log(log) {}

    [[nodiscard]] bool isEnabled() const override { return isRegistered; }
    std::expected<void, Error> registerItem() override {
        m_log.emplace_back("loginItems.registerItem");
        if (failure)
            return std::unexpected(*failure);
        isRegistered = true;
        return {};
    }
    std::expected<void, Error> unregisterItem() override {
        m_log.emplace_back("loginItems.unregisterItem");
        if (failure)
            return std::unexpected(*failure);
        isRegistered = false;
        return {};
    }

    bool isRegistered = false;
    std::optional<Error> failure;

private:
    CallLog& m_log;
};

class FakePermissionSource final : public PermissionSource {
public:
    explicit FakePermissionSource(CallLog& log) : m_log(log) {}

    QCoro::Task<CaptureAuthorization> microphoneAuthorization() override {
        m_log.emplace_back("permissions.microphoneAuthorization");
        co_return microphone;
    }
    QCoro::Task<bool> requestMicrophoneAccess() override {
        m_log.emplace_back("permissions.requestMicrophoneAccess");
        co_await requestGate.pass();
        co_return isMicrophoneGranted;
    }
    QCoro::Task<std::expected<void, Error>> shareableContent() override {
        m_log.emplace_back("permissions.shareableContent");
        if (contentFailure)
            co_return std::unexpected(*contentFailure);
        co_return {};
    }

    CaptureAuthorization microphone = CaptureAuthorization::authorized;
    bool isMicrophoneGranted = true;
    std::optional<Error> contentFailure;
    Gate requestGate;

private:
    CallLog& m_log;
};

class FakeSystemSettings final : public SystemSettings {
public:
    explicit FakeSystemSettings(CallLog& log) : m_log(log) {}

    void openPrivacyPane(PrivacyPane pane) override {
        m_log.emplace_back("settings.openPrivacyPane");
        opened.push_back(pane);
    }

    std::vector<PrivacyPane> opened;

private:
    CallLog& m_log;
};

/// Keeps an alert open until `press`, unless `answer` says what the user presses at once. Alerts that are open when
/// it goes are closed as by the user.
class FakeAlertPresenter final : public AlertPresenter {
public:
    explicit FakeAlertPresenter(CallLog& log) : m_log(log) {}
    ~FakeAlertPresenter() override {
        if (m_open.empty())
            return;
        for (const auto& producer : m_open)
            producer.finish();
        settle();
    }

    QCoro::Task<std::size_t> runModal(Alert alert) override {
        m_log.emplace_back("alerts.runModal");
        const auto last = alert.buttonTitles.size() - 1;
        alerts.push_back(std::move(alert));
        if (answer)
            co_return *answer;
        auto [stream, producer] = AsyncStream<std::size_t>::make();
        m_open.push_back(producer);
        const auto keep = stream;
        const auto pressed = co_await keep.next();
        co_return pressed && pressed->has_value() ? **pressed : last;
    }

    /// The user presses a button of the oldest alert that is open.
    void press(std::size_t button) {
        const auto producer = m_open.front();
        m_open.erase(m_open.begin());
        producer.push(button);
    }
    [[nodiscard]] std::size_t openCount() const { return m_open.size(); }

    std::optional<std::size_t> answer;
    /// All that were shown, in order.
    std::vector<Alert> alerts;

private:
    CallLog& m_log;
    std::vector<AsyncStream<std::size_t>::Producer> m_open;
};

class FakeWebBrowser final : public WebBrowser {
public:
    explicit FakeWebBrowser(CallLog& log) : m_log(log) {}

    QCoro::Task<std::expected<void, Error>> open(QUrl page) override {
        m_log.emplace_back("browser.open");
        pages.push_back(std::move(page));
        co_await gate.pass();
        if (failure)
            co_return std::unexpected(*failure);
        co_return {};
    }

    QCoro::Task<std::expected<void, Error>> openContact(QUrl link) override {
        m_log.emplace_back("browser.openContact");
        contacts.push_back(std::move(link));
        co_await gate.pass();
        if (failure)
            co_return std::unexpected(*failure);
        co_return {};
    }

    QCoro::Task<std::expected<void, Error>> composeMail(QString subject, QString text) override {
        m_log.emplace_back("browser.composeMail");
        mails.emplace_back(std::move(subject), std::move(text));
        co_await gate.pass();
        if (failure)
            co_return std::unexpected(*failure);
        co_return {};
    }

    Gate gate;
    std::optional<Error> failure;
    /// All that were asked for, in order.
    std::vector<QUrl> pages;
    std::vector<QUrl> contacts;
    /// Subject and text of each.
    std::vector<std::pair<QString, QString>> mails;

private:
    CallLog& m_log;
};

class FakeWindowActivation final : public WindowActivation {
public:
    explicit FakeWindowActivation(CallLog& log) : m_log(log) {}

    void activateIgnoringOtherApps(QWindow& window, const QString& token) override {
        m_log.emplace_back("activation.activateIgnoringOtherApps");
        activations.emplace_back(&window, token);
    }

    /// Window and token of each, in order.
    std::vector<std::pair<QWindow*, QString>> activations;

private:
    CallLog& m_log;
};

class FakeDesktopAppearance final : public DesktopAppearance {
public:
    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }

    /// The user picks another look.
    void setColorScheme(ColorScheme scheme) {
        m_scheme = scheme;
        if (onChanged)
            onChanged();
    }

private:
    ColorScheme m_scheme = ColorScheme::noPreference;
};

/// All of it at once, with one log.
struct FakeDesktop {
    CallLog log;
    FakeNotificationCenter notifications{log};
    FakeGlobalKeys keys{log};
    FakeStatusBar statusBar{log};
    FakeLoginItems loginItems{log};
    FakePermissionSource permissions{log};
    FakeSystemSettings settings{log};
    FakeAlertPresenter alerts{log};
    FakeWebBrowser browser{log};
    FakeSpeechSynthesizer speech;
    FakeWindowActivation activation{log};
    FakeDesktopAppearance appearance;
};

}  // namespace corvellan::test
