#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <span>

#include "Platform/GlobalKeys.h"

namespace corvellan {

/// What a keyboard map is made from, as the display server describes it.
struct KeyboardDescription {
    struct NamedKey {
        std::uint8_t keycode = 0;
        std::array<char, 4> name{};  ///< The place: "AC07", "SPCE". Shorter names end in zeros.
    };
    struct KeyAlias {
        std::array<char, 4> real{};
        std::array<char, 4> alias{};
    };
    struct KeyModifiers {
        std::uint8_t keycode = 0;
        std::uint16_t modifiers = 0;
    };

    std::span<const NamedKey> names;
    std::span<const KeyAlias> aliases;
    /// The eight real modifiers that each key sets.
    std::span<const KeyModifiers> modifiers;
    /// The virtual modifiers that each key carries.
    std::span<const KeyModifiers> virtualModifiers;
    /// Which of the virtual modifiers is named Super; none when zero.
    std::uint16_t superModifier = 0;
};

/// Which keycode is which key. A pure value.
///
/// Letters go by their place, since the shortcut stays where it is when the layout changes. Modifiers go by
/// what they do, since whoever swaps two of them wants just that.
class KeyboardMap {
public:
    using Keys = std::bitset<256>;

    KeyboardMap() = default;
    explicit KeyboardMap(const KeyboardDescription& description);

    [[nodiscard]] PhysicalKey keyAt(std::uint8_t keycode) const;
    /// Whether the keyboard tells where J is.
    [[nodiscard]] bool knowsPlaces() const { return m_j != 0; }

    [[nodiscard]] bool isModifier(std::uint8_t keycode) const { return m_modifierKeys[keycode]; }
    [[nodiscard]] bool isShiftAmong(const Keys& keys) const { return (keys & m_shiftKeys).any(); }
    [[nodiscard]] bool isCommandAmong(const Keys& keys) const { return (keys & m_commandKeys).any(); }
    /// The same for the server's eight modifiers, which tell what is latched or locked.
    [[nodiscard]] bool isShiftIn(std::uint8_t modifiers) const;
    [[nodiscard]] bool isCommandIn(std::uint8_t modifiers) const { return (modifiers & m_commandModifiers) != 0; }

private:
    std::uint8_t m_space = 0;
    std::uint8_t m_j = 0;
    Keys m_modifierKeys;
    Keys m_shiftKeys;
    Keys m_commandKeys;
    std::uint8_t m_commandModifiers = 0;
};

}  // namespace corvellan
