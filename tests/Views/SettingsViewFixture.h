#pragma once

#include <gtest/gtest.h>
#include <algorithm>
#include <memory>
#include <string>

#include "Support/SessionFixture.h"
#include "Support/SettingsFixture.h"
#include "Views/SettingsView.h"

namespace corvellan::test {

/// The settings over a session of fakes and a desktop of fakes.
class SettingsViewFixture : public testing::Test {
protected:
    SettingsView& view() {
        if (!m_view)
            m_view = std::make_unique<SettingsView>(fixture.session(), fixture.preferences, settings.parts());
        return *m_view;
    }
    SessionViewModel& session() { return fixture.session(); }
    [[nodiscard]] bool did(const std::string& step) const {
        return std::ranges::find(settings.desktop.log, step) != settings.desktop.log.end();
    }

    SessionFixture fixture;
    SettingsFixture settings{fixture.preferences};

private:
    std::unique_ptr<SettingsView> m_view;
};

}  // namespace corvellan::test
