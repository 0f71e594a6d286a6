#include "KeyboardMap.h"

#include <algorithm>

namespace corvellan {

namespace {

using Name = std::array<char, 4>;

constexpr Name placeOfJ{'A', 'C', '0', '7'};
constexpr Name placeOfSpace{'S', 'P', 'C', 'E'};

// The server's numbers for its real modifiers, the same in every map.
constexpr std::uint16_t shiftModifier = 1 << 0;
constexpr std::uint16_t usualSuperModifier = 1 << 6;  // Mod4.

/// Zero when no key is at that place.
std::uint8_t keycodeAt(const KeyboardDescription& description, const Name& place) {
    const auto named = [&](const Name& name) -> std::uint8_t {
        const auto key = std::ranges::find(description.names, name, &KeyboardDescription::NamedKey::name);
        return key == description.names.end() ? 0 : key->keycode;
    };
    if (const auto keycode = named(place))
        return keycode;
    const auto alias = std::ranges::find(description.aliases, place, &KeyboardDescription::KeyAlias::alias);
    return alias == description.aliases.end() ? 0 : named(alias->real);
}

KeyboardMap::Keys keysWith(std::span<const KeyboardDescription::KeyModifiers> keys, std::uint16_t modifiers) {
    KeyboardMap::Keys found;
    for (const auto& key : keys)
        if ((key.modifiers & modifiers) != 0)
            found.set(key.keycode);
    return found;
}

}  // namespace

KeyboardMap::KeyboardMap(const KeyboardDescription& description)
    : m_space(keycodeAt(description, placeOfSpace)),
      m_j(keycodeAt(description, placeOfJ)),
      m_modifierKeys(keysWith(description.modifiers, 0xFF)),
      m_shiftKeys(keysWith(description.modifiers, shiftModifier)),
      m_commandKeys(keysWith(description.virtualModifiers, description.superModifier)) {
    // A map that was not compiled from the usual rules names no Super; Mod4 is where it then is.
    if (m_commandKeys.none())
        m_commandKeys = keysWith(description.modifiers, usualSuperModifier);
    for (const auto& key : description.modifiers)
        if (m_commandKeys[key.keycode])
            m_commandModifiers |= static_cast<std::uint8_t>(key.modifiers & ~shiftModifier);
}

PhysicalKey KeyboardMap::keyAt(std::uint8_t keycode) const {
    // Keycode 0 is none, so that an unknown place matches nothing.
    if (keycode != 0 && keycode == m_j)
        return PhysicalKey::j;
    if (keycode != 0 && keycode == m_space)
        return PhysicalKey::space;
    return PhysicalKey::other;
}

bool KeyboardMap::isShiftIn(std::uint8_t modifiers) const {
    return (modifiers & shiftModifier) != 0;
}

}  // namespace corvellan
