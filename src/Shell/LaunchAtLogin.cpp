#include "LaunchAtLogin.h"

#include <tuple>

#include "Base/Preferences.h"
#include "Platform/LoginItems.h"

using namespace Qt::StringLiterals;

namespace corvellan {

LaunchAtLogin::LaunchAtLogin(LoginItems& items, Preferences& preferences)
    : m_items(items),
      m_preferences(preferences) {}

bool LaunchAtLogin::isEnabled() const {
    return m_items.isEnabled();
}

void LaunchAtLogin::setEnabled(bool isEnabled) {
    std::ignore = isEnabled ? m_items.registerItem() : m_items.unregisterItem();
}

void LaunchAtLogin::registerIfFirstLaunch() {
    const auto key = u"hasRegisteredLoginItem"_s;
    if (m_preferences.boolean(key).value_or(false))
        return;
    // Before the attempt: one that fails is not tried again at every start.
    m_preferences.setBoolean(key, true);
    setEnabled(true);
}

}  // namespace corvellan
