#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <vector>

#include "KeyboardMap.h"
#include "Platform/GlobalKeys.h"

namespace corvellan {

/// One connection that watches keys.
///
/// Raw events carry no modifiers, so that the keys that are down are followed here: what was down before is
/// asked for at the start and after each change of the keyboard. Answers and events take effect in the order
/// in which the server made them; otherwise a press beside a question would count twice or not at all.
class X11KeyMonitor final : public QObject, public GlobalKeyMonitor {
public:
    X11KeyMonitor(const QByteArray& display, std::function<void(const KeyDown&)> onKeyDown);
    ~X11KeyMonitor() override;
    X11KeyMonitor(const X11KeyMonitor&) = delete;
    X11KeyMonitor& operator=(const X11KeyMonitor&) = delete;

    [[nodiscard]] GlobalKeyWatch watch() const override { return m_watch; }
    [[nodiscard]] QString explanation() const override { return m_explanation; }

private:
    struct FreeMemory {
        void operator()(void* memory) const { std::free(memory); }
    };
    using Event = std::unique_ptr<xcb_generic_event_t, FreeMemory>;
    /// Takes the server's answer; null when it refused.
    using OnAnswer = void (X11KeyMonitor::*)(const void* answer);
    struct Question {
        std::uint32_t sequence = 0;
        OnAnswer onAnswer = nullptr;
    };

    void start();
    void ask(std::uint32_t sequence, OnAnswer onAnswer) { m_questions.push_back({sequence, onAnswer}); }
    void askForKeyboard();

    void takeInputVersion(const void* answer);
    void takeKeyboardVersion(const void* answer);
    void takeSuperAtom(const void* answer);
    void takeNames(const void* answer);
    void takeModifiers(const void* answer);
    void takeState(const void* answer);
    void takePressedKeys(const void* answer);

    void readAll();
    [[nodiscard]] bool readAnswer(std::vector<KeyDown>& keyDowns);
    [[nodiscard]] bool peek(Event (*next)(xcb_connection_t*));
    void handle(const xcb_generic_event_t& event, std::vector<KeyDown>& keyDowns);
    void handleKey(std::uint8_t keycode, bool isDown, std::vector<KeyDown>& keyDowns);
    void deliver(const std::vector<KeyDown>& keyDowns);

    void set(GlobalKeyWatch watch, const QString& explanation);
    void fail(const QString& reason);

    const std::function<void(const KeyDown&)> m_onKeyDown;
    GlobalKeyWatch m_watch = GlobalKeyWatch::starting;
    QString m_explanation;
    bool m_isChangeUntold = false;

    xcb_connection_t* m_connection = nullptr;
    std::optional<QSocketNotifier> m_readable;
    std::uint8_t m_inputOpcode = 0;
    std::uint8_t m_keyboardFirstEvent = 0;
    std::uint32_t m_superAtom = 0;
    std::uint32_t m_selectSequence = 0;

    std::deque<Question> m_questions;
    Event m_next;
    bool m_isKeyboardStale = false;

    // Collected from several answers until the map can be made.
    std::vector<KeyboardDescription::NamedKey> m_names;
    std::vector<KeyboardDescription::KeyAlias> m_aliases;
    std::uint16_t m_superModifier = 0;

    KeyboardMap m_map;
    KeyboardMap::Keys m_pressed;
    /// Modifiers that hold although no key is down, as with sticky keys.
    std::uint8_t m_heldModifiers = 0;
};

}  // namespace corvellan
