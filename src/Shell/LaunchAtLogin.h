#pragma once

namespace corvellan {

class LoginItems;
class Preferences;

/// The program as a login item: once by itself at the first launch, afterwards by the user's choice. Main
/// thread.
class LaunchAtLogin {
public:
    /// Both outlive it.
    LaunchAtLogin(LoginItems& items, Preferences& preferences);

    [[nodiscard]] bool isEnabled() const;
    /// A failure is dropped; the next read shows the truth.
    void setEnabled(bool isEnabled);

    /// Registers the program unless that was tried before, in whatever run.
    void registerIfFirstLaunch();

private:
    LoginItems& m_items;
    Preferences& m_preferences;
};

}  // namespace corvellan
