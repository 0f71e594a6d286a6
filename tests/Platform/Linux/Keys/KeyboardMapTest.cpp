#include <gtest/gtest.h>

#include "Platform/Linux/Keys/Explanations.h"
#include "Platform/Linux/Keys/KeyboardMap.h"
#include "Platform/Linux/Keys/LinuxGlobalKeys.h"

namespace corvellan::test {

namespace {

using NamedKey = KeyboardDescription::NamedKey;
using KeyAlias = KeyboardDescription::KeyAlias;
using KeyModifiers = KeyboardDescription::KeyModifiers;

constexpr std::uint16_t shift = 1 << 0;
constexpr std::uint16_t control = 1 << 2;
constexpr std::uint16_t mod1 = 1 << 3;
constexpr std::uint16_t mod4 = 1 << 6;

const std::array usualNames{NamedKey{44, {'A', 'C', '0', '7'}}, NamedKey{65, {'S', 'P', 'C', 'E'}}};
const std::array usualModifiers{KeyModifiers{37, control}, KeyModifiers{50, shift}, KeyModifiers{62, shift},
                                KeyModifiers{133, mod4}, KeyModifiers{134, mod4}};

KeyboardMap::Keys keys(std::initializer_list<std::size_t> down) {
    KeyboardMap::Keys set;
    for (const std::size_t keycode : down)
        set.set(keycode);
    return set;
}

}  // namespace

TEST(KeyboardMapTest, knowsKeysByTheirPlace) {
    const KeyboardMap map{{.names = usualNames}};
    EXPECT_TRUE(map.knowsPlaces());
    EXPECT_EQ(map.keyAt(44), PhysicalKey::j);
    EXPECT_EQ(map.keyAt(65), PhysicalKey::space);
    EXPECT_EQ(map.keyAt(45), PhysicalKey::other);
    EXPECT_EQ(map.keyAt(0), PhysicalKey::other);
}

TEST(KeyboardMapTest, followsAnAliasToTheKey) {
    const std::array names{NamedKey{91, {'J', 'K', 'E', 'Y'}}};
    const std::array aliases{KeyAlias{{'J', 'K', 'E', 'Y'}, {'A', 'C', '0', '7'}}};
    const KeyboardMap map{{.names = names, .aliases = aliases}};
    EXPECT_EQ(map.keyAt(91), PhysicalKey::j);
}

TEST(KeyboardMapTest, matchesNothingWhereThePlacesAreUnknown) {
    const std::array aliases{KeyAlias{{'N', 'O', 'N', 'E'}, {'A', 'C', '0', '7'}}};
    const KeyboardMap map{{.aliases = aliases}};
    EXPECT_FALSE(map.knowsPlaces());
    EXPECT_EQ(map.keyAt(0), PhysicalKey::other);
    EXPECT_EQ(map.keyAt(44), PhysicalKey::other);
    EXPECT_FALSE(KeyboardMap{}.knowsPlaces());
}

TEST(KeyboardMapTest, takesMod4ForSuperWhereNoneIsNamed) {
    const KeyboardMap map{{.names = usualNames, .modifiers = usualModifiers}};
    EXPECT_TRUE(map.isCommandAmong(keys({133})));
    EXPECT_TRUE(map.isCommandAmong(keys({134, 3})));
    EXPECT_FALSE(map.isCommandAmong(keys({37, 50, 44})));
    EXPECT_TRUE(map.isCommandIn(mod4 | control));
    EXPECT_FALSE(map.isCommandIn(control));
}

TEST(KeyboardMapTest, takesTheKeysThatAreNamedSuper) {
    // Super and Alt swapped: the keys beside the space bar carry Super, on another real modifier.
    constexpr std::uint16_t super = 1 << 5;
    const std::array modifiers{KeyModifiers{64, mod1}, KeyModifiers{133, mod4}};
    const std::array virtualModifiers{KeyModifiers{64, super}, KeyModifiers{133, 1 << 2}};
    const KeyboardMap map{
        {.names = usualNames, .modifiers = modifiers, .virtualModifiers = virtualModifiers, .superModifier = super}};
    EXPECT_TRUE(map.isCommandAmong(keys({64})));
    EXPECT_FALSE(map.isCommandAmong(keys({133})));
    EXPECT_TRUE(map.isCommandIn(mod1));
    EXPECT_FALSE(map.isCommandIn(mod4));
}

TEST(KeyboardMapTest, knowsBothShiftKeysAndWhatIsAModifierAtAll) {
    const KeyboardMap map{{.names = usualNames, .modifiers = usualModifiers}};
    EXPECT_TRUE(map.isShiftAmong(keys({50})));
    EXPECT_TRUE(map.isShiftAmong(keys({62})));
    EXPECT_FALSE(map.isShiftAmong(keys({37, 133})));
    EXPECT_TRUE(map.isShiftIn(shift | mod4));
    EXPECT_FALSE(map.isShiftIn(mod4));
    EXPECT_TRUE(map.isModifier(37));
    EXPECT_FALSE(map.isModifier(44));
}

TEST(LinuxGlobalKeysTest, aWaylandSessionIsOneByEitherSign) {
    EXPECT_TRUE(isWaylandSession(u"wayland", u""));
    EXPECT_TRUE(isWaylandSession(u"", u"wayland-0"));
    EXPECT_TRUE(isWaylandSession(u"x11", u"wayland-0"));
    EXPECT_FALSE(isWaylandSession(u"x11", u""));
    EXPECT_FALSE(isWaylandSession(u"tty", u""));
    EXPECT_FALSE(isWaylandSession({}, {}));
}

}  // namespace corvellan::test
