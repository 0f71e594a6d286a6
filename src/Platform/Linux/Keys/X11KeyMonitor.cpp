#include "X11KeyMonitor.h"

#include <xcb/xcbext.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <QPointer>
#include <string_view>
#include <utility>

// The header names a field after a keyword of C++.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wkeyword-macro"
#define explicit isExplicit
#include <xcb/xkb.h>
#undef explicit
#pragma clang diagnostic pop

#include "Explanations.h"
#include "X11GlobalKeys.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

constexpr std::uint16_t coreKeyboard = XCB_XKB_ID_USE_CORE_KBD;

/// Raw events reach every listener, whoever has grabbed the keyboard, from this version on.
constexpr std::uint16_t inputMajorVersion = 2;
constexpr std::uint16_t inputMinorVersion = 2;

struct RawKeySelection {
    xcb_input_event_mask_t header;
    std::uint32_t events;
};

/// Before or at: numbers wrap round.
bool isBefore(std::uint32_t sequence, std::uint32_t other) {
    return static_cast<std::int32_t>(sequence - other) < 0;
}

/// Whether variable parts of `size` bytes lie within an answer whose fixed part has `fixedSize`.
bool fits(const void* answer, std::size_t fixedSize, int size) {
    constexpr std::size_t smallestAnswer = 32;
    const auto* generic = static_cast<const xcb_generic_reply_t*>(answer);
    return size >= 0 && fixedSize + static_cast<std::size_t>(size) <= smallestAnswer + generic->length * std::size_t{4};
}

std::array<char, 4> nameOf(const char (&name)[4]) {
    return std::to_array(name);
}

}  // namespace

std::unique_ptr<GlobalKeyMonitor> X11GlobalKeys::addGlobalMonitor(std::function<void(const KeyDown&)> onKeyDown) {
    return std::make_unique<X11KeyMonitor>(m_display, std::move(onKeyDown));
}

X11KeyMonitor::X11KeyMonitor(const QByteArray& display, std::function<void(const KeyDown&)> onKeyDown)
    : m_onKeyDown(std::move(onKeyDown)) {
    int screenNumber = 0;
    m_connection = xcb_connect(display.isEmpty() ? nullptr : display.constData(), &screenNumber);
    if (xcb_connection_has_error(m_connection)) {
        fail(u"the X server can't be reached"_s);
        return;
    }
    m_readable.emplace(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
    QObject::connect(&*m_readable, &QSocketNotifier::activated, this, [this] { readAll(); });
    start();
}

X11KeyMonitor::~X11KeyMonitor() {
    m_readable.reset();
    m_next.reset();
    xcb_disconnect(m_connection);
}

void X11KeyMonitor::start() {
    const auto* input = xcb_get_extension_data(m_connection, &xcb_input_id);
    const auto* keyboard = xcb_get_extension_data(m_connection, &xcb_xkb_id);
    if (!input || !input->present || !keyboard || !keyboard->present) {
        fail(u"this X server doesn't let programs observe keys"_s);
        return;
    }
    m_inputOpcode = input->major_opcode;
    m_keyboardFirstEvent = keyboard->first_event;

    ask(xcb_input_xi_query_version(m_connection, inputMajorVersion, inputMinorVersion).sequence,
        &X11KeyMonitor::takeInputVersion);
    ask(xcb_xkb_use_extension(m_connection, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION).sequence,
        &X11KeyMonitor::takeKeyboardVersion);

    const std::array<RawKeySelection, 2> selections{
        {{.header = {.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1},
          .events = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE},
         // A keyboard that is pulled out takes the keys that it held down with it.
         {.header = {.deviceid = XCB_INPUT_DEVICE_ALL, .mask_len = 1}, .events = XCB_INPUT_XI_EVENT_MASK_HIERARCHY}}};
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_selectSequence =
        xcb_input_xi_select_events(m_connection, screen->root, selections.size(), &selections[0].header).sequence;

    constexpr std::uint16_t held = XCB_XKB_STATE_PART_MODIFIER_LATCH | XCB_XKB_STATE_PART_MODIFIER_LOCK;
    constexpr std::uint16_t keyboardChanges = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t mapParts =
        XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_xkb_select_events_details_t details{};
    details.affectState = held;
    details.stateDetails = held;
    xcb_xkb_select_events_aux(m_connection, coreKeyboard, keyboardChanges | XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0,
                              keyboardChanges, mapParts, mapParts, &details);

    constexpr std::string_view super = "Super";
    ask(xcb_intern_atom(m_connection, 1, super.size(), super.data()).sequence, &X11KeyMonitor::takeSuperAtom);
    askForKeyboard();
    readAll();
}

void X11KeyMonitor::askForKeyboard() {
    m_isKeyboardStale = false;
    constexpr std::uint32_t names =
        XCB_XKB_NAME_DETAIL_KEY_NAMES | XCB_XKB_NAME_DETAIL_KEY_ALIASES | XCB_XKB_NAME_DETAIL_VIRTUAL_MOD_NAMES;
    constexpr std::uint16_t modifiers = XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    ask(xcb_xkb_get_names(m_connection, coreKeyboard, names).sequence, &X11KeyMonitor::takeNames);
    ask(xcb_xkb_get_map(m_connection, coreKeyboard, modifiers, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0).sequence,
        &X11KeyMonitor::takeModifiers);
    ask(xcb_xkb_get_state(m_connection, coreKeyboard).sequence, &X11KeyMonitor::takeState);
    ask(xcb_query_keymap(m_connection).sequence, &X11KeyMonitor::takePressedKeys);
    xcb_flush(m_connection);
}

void X11KeyMonitor::takeInputVersion(const void* answer) {
    const auto* version = static_cast<const xcb_input_xi_query_version_reply_t*>(answer);
    if (!version || version->major_version < inputMajorVersion || version->minor_version < inputMinorVersion)
        fail(u"this X server is too old to let programs observe keys"_s);
}

void X11KeyMonitor::takeKeyboardVersion(const void* answer) {
    const auto* version = static_cast<const xcb_xkb_use_extension_reply_t*>(answer);
    if (!version || !version->supported)
        fail(u"this X server doesn't describe its keyboard"_s);
}

void X11KeyMonitor::takeSuperAtom(const void* answer) {
    if (const auto* atom = static_cast<const xcb_intern_atom_reply_t*>(answer))
        m_superAtom = atom->atom;
}

void X11KeyMonitor::takeNames(const void* answer) {
    m_names.clear();
    m_aliases.clear();
    m_superModifier = 0;
    const auto* reply = static_cast<const xcb_xkb_get_names_reply_t*>(answer);
    if (!reply)
        return;
    const void* const variable = xcb_xkb_get_names_value_list(reply);
    if (!fits(reply, sizeof *reply,
              xcb_xkb_get_names_value_list_sizeof(variable, reply->nTypes, reply->indicators, reply->virtualMods,
                                                  reply->groupNames, reply->nKeys, reply->nKeyAliases,
                                                  reply->nRadioGroups, reply->which)))
        return;
    xcb_xkb_get_names_value_list_t lists{};
    xcb_xkb_get_names_value_list_unpack(variable, reply->nTypes, reply->indicators, reply->virtualMods,
                                        reply->groupNames, reply->nKeys, reply->nKeyAliases, reply->nRadioGroups,
                                        reply->which, &lists);
    if ((reply->which & XCB_XKB_NAME_DETAIL_KEY_NAMES) != 0)
        for (int i = 0; i < reply->nKeys && reply->firstKey + i <= 255; ++i)
            m_names.push_back(
                {.keycode = static_cast<std::uint8_t>(reply->firstKey + i), .name = nameOf(lists.keyNames[i].name)});
    if ((reply->which & XCB_XKB_NAME_DETAIL_KEY_ALIASES) != 0)
        for (int i = 0; i < reply->nKeyAliases; ++i)
            m_aliases.push_back({.real = nameOf(lists.keyAliases[i].real), .alias = nameOf(lists.keyAliases[i].alias)});
    if ((reply->which & XCB_XKB_NAME_DETAIL_VIRTUAL_MOD_NAMES) != 0 && m_superAtom != XCB_ATOM_NONE) {
        // One name for each bit that is set, from the lowest on.
        int index = 0;
        for (int bit = 0; bit < 16; ++bit)
            if ((reply->virtualMods & (1U << bit)) != 0 && lists.virtualModNames[index++] == m_superAtom)
                m_superModifier = static_cast<std::uint16_t>(1U << bit);
    }
}

void X11KeyMonitor::takeModifiers(const void* answer) {
    std::vector<KeyboardDescription::KeyModifiers> modifiers;
    std::vector<KeyboardDescription::KeyModifiers> virtualModifiers;
    const auto* reply = static_cast<const xcb_xkb_get_map_reply_t*>(answer);
    const auto* variable = reply ? xcb_xkb_get_map_map(reply) : nullptr;
    if (reply && fits(reply, sizeof *reply,
                      xcb_xkb_get_map_map_sizeof(variable, reply->nTypes, reply->nKeySyms, reply->nKeyActions,
                                                 reply->totalActions, reply->totalKeyBehaviors, reply->virtualMods,
                                                 reply->totalKeyExplicit, reply->totalModMapKeys,
                                                 reply->totalVModMapKeys, reply->present))) {
        xcb_xkb_get_map_map_t map{};
        xcb_xkb_get_map_map_unpack(variable, reply->nTypes, reply->nKeySyms, reply->nKeyActions, reply->totalActions,
                                   reply->totalKeyBehaviors, reply->virtualMods, reply->totalKeyExplicit,
                                   reply->totalModMapKeys, reply->totalVModMapKeys, reply->present, &map);
        if ((reply->present & XCB_XKB_MAP_PART_MODIFIER_MAP) != 0)
            for (int i = 0; i < reply->totalModMapKeys; ++i)
                modifiers.push_back({.keycode = map.modmap_rtrn[i].keycode, .modifiers = map.modmap_rtrn[i].mods});
        if ((reply->present & XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP) != 0)
            for (int i = 0; i < reply->totalVModMapKeys; ++i)
                virtualModifiers.push_back(
                    {.keycode = map.vmodmap_rtrn[i].keycode, .modifiers = map.vmodmap_rtrn[i].vmods});
    }
    m_map = KeyboardMap{{.names = m_names,
                         .aliases = m_aliases,
                         .modifiers = modifiers,
                         .virtualModifiers = virtualModifiers,
                         .superModifier = m_superModifier}};
}

void X11KeyMonitor::takeState(const void* answer) {
    if (const auto* state = static_cast<const xcb_xkb_get_state_reply_t*>(answer))
        m_heldModifiers = state->latchedMods | state->lockedMods;
}

void X11KeyMonitor::takePressedKeys(const void* answer) {
    if (const auto* pressed = static_cast<const xcb_query_keymap_reply_t*>(answer))
        for (std::size_t keycode = 0; keycode < m_pressed.size(); ++keycode)
            m_pressed[keycode] = (pressed->keys[keycode / 8] >> (keycode % 8)) & 1;
    if (m_map.knowsPlaces())
        set(GlobalKeyWatch::watching, {});
    else
        set(GlobalKeyWatch::unavailable, shortcutUnavailable(u"the keyboard doesn't tell which key is J"_s));
}

bool X11KeyMonitor::peek(Event (*next)(xcb_connection_t*)) {
    if (!m_next)
        m_next = next(m_connection);
    return m_next != nullptr;
}

/// True when the oldest question has been answered, after everything that came before the answer.
bool X11KeyMonitor::readAnswer(std::vector<KeyDown>& keyDowns) {
    const Question question = m_questions.front();
    void* answer = nullptr;
    xcb_generic_error_t* refusal = nullptr;
    if (!xcb_poll_for_reply(m_connection, question.sequence, &answer, &refusal))
        return false;
    std::free(refusal);
    const std::unique_ptr<void, FreeMemory> owned{answer};
    // Looking for the answer may have read events from before it.
    while (peek([](xcb_connection_t* from) { return Event{xcb_poll_for_queued_event(from)}; }) &&
           isBefore(m_next->full_sequence, question.sequence))
        handle(*std::exchange(m_next, nullptr), keyDowns);
    m_questions.pop_front();
    (this->*question.onAnswer)(answer);
    return true;
}

void X11KeyMonitor::readAll() {
    std::vector<KeyDown> keyDowns;
    while (m_readable) {
        const bool isEvent = peek([](xcb_connection_t* from) { return Event{xcb_poll_for_event(from)}; });
        const bool isAnswerNext =
            !m_questions.empty() && (!isEvent || !isBefore(m_next->full_sequence, m_questions.front().sequence));
        if (isAnswerNext && readAnswer(keyDowns))
            continue;
        if (m_next)
            handle(*std::exchange(m_next, nullptr), keyDowns);
        else if (m_isKeyboardStale && m_questions.empty())
            askForKeyboard();
        else
            break;
    }
    if (m_readable && xcb_connection_has_error(m_connection))
        fail(u"the connection to the X server was lost"_s);
    deliver(keyDowns);
}

void X11KeyMonitor::handle(const xcb_generic_event_t& event, std::vector<KeyDown>& keyDowns) {
    constexpr std::uint8_t sentByClient = 0x80;
    constexpr std::uint8_t refusal = 0;
    const std::uint8_t type = event.response_type & ~sentByClient;
    // Other programs can send anything that looks like an event.
    if ((event.response_type & sentByClient) != 0)
        return;
    if (type == refusal) {
        if (event.full_sequence == m_selectSequence)
            fail(u"this X server doesn't let programs observe keys"_s);
    } else if (type == XCB_GE_GENERIC) {
        const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
        if (raw.extension != m_inputOpcode)
            return;
        if (raw.event_type == XCB_INPUT_HIERARCHY)
            m_isKeyboardStale = true;
        else if ((raw.event_type == XCB_INPUT_RAW_KEY_PRESS || raw.event_type == XCB_INPUT_RAW_KEY_RELEASE) &&
                 raw.detail < m_pressed.size())
            handleKey(static_cast<std::uint8_t>(raw.detail), raw.event_type == XCB_INPUT_RAW_KEY_PRESS, keyDowns);
    } else if (type == XCB_MAPPING_NOTIFY) {
        m_isKeyboardStale = true;
    } else if (type == m_keyboardFirstEvent) {
        // All events of this extension share one type; the second byte tells them apart.
        if (event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY) {
            m_isKeyboardStale = true;
        } else if (event.pad0 == XCB_XKB_STATE_NOTIFY) {
            const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
            m_heldModifiers = state.latchedMods | state.lockedMods;
        }
    }
}

void X11KeyMonitor::handleKey(std::uint8_t keycode, bool isDown, std::vector<KeyDown>& keyDowns) {
    const bool isRepeat = isDown && m_pressed[keycode];
    m_pressed[keycode] = isDown;
    // Until the first answers are in, nothing is known of any key.
    if (!isDown || isRepeat || m_watch != GlobalKeyWatch::watching || m_map.isModifier(keycode))
        return;
    keyDowns.push_back({.key = m_map.keyAt(keycode),
                        .isCommandDown = m_map.isCommandAmong(m_pressed) || m_map.isCommandIn(m_heldModifiers),
                        .isShiftDown = m_map.isShiftAmong(m_pressed) || m_map.isShiftIn(m_heldModifiers)});
}

/// Last, since either call may destroy this object.
void X11KeyMonitor::deliver(const std::vector<KeyDown>& keyDowns) {
    const QPointer<X11KeyMonitor> self{this};
    const auto onKeyDown = m_onKeyDown;
    if (std::exchange(m_isChangeUntold, false) && onChanged)
        std::function{onChanged}();
    for (const KeyDown& keyDown : keyDowns)
        if (self && onKeyDown)
            onKeyDown(keyDown);
}

void X11KeyMonitor::set(GlobalKeyWatch watch, const QString& explanation) {
    if (m_watch == watch && m_explanation == explanation)
        return;
    m_watch = watch;
    m_explanation = explanation;
    m_isChangeUntold = true;
}

/// For good: what an X server refuses, it refuses for as long as it runs.
void X11KeyMonitor::fail(const QString& reason) {
    m_readable.reset();
    set(GlobalKeyWatch::unavailable, shortcutUnavailable(reason));
}

}  // namespace corvellan
