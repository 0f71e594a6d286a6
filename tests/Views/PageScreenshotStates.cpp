#include "ScreenshotStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using States = std::vector<ScreenshotState>;

ScreenshotState screen(const QString& name, const QString& tab, bool isLight) {
    ScreenshotState state{
        .name = name,
        .prepare = [](SessionViewModel& session) { session.setUserEmail(u"sandra.weiss@nordwind.example"_s); },
        .isCall = false};
    state.tab = tab;
    state.isLight = isLight;
    return state;
}

States memoryStates() {
    const QString note =
        u"Territory: northern Germany and Denmark, mid-size logistics and manufacturing.\n\nI sell monitoring and "
        "support contracts. Most customers come from a spreadsheet and an on-call phone.\n\nI talk too fast when the "
        "price comes up: remind me to wait."_s;
    States states;
    for (const bool isLight : {false, true}) {
        const QString suffix = isLight ? u"light"_s : u"dark"_s;
        ScreenshotState state = screen(u"memory-"_s + suffix, u"memory"_s, isLight);
        state.note = note;
        state.openFor = 10s;
        states.push_back(state);
        state.name = u"memory-saved-"_s + suffix;
        state.openFor = 600ms;
        states.push_back(state);
        state.name = u"memory-long-"_s + suffix;
        state.note = QString{u"Ask about the last outage and what it cost. "_s}.repeated(43);
        states.push_back(state);
    }
    ScreenshotState smallest = states.front();
    smallest.name = u"memory-smallest"_s;
    smallest.size = QSize{520, 400};
    ScreenshotState empty = smallest;
    empty.name = u"memory-empty-focus"_s;
    empty.note = QString{};
    empty.size.reset();
    empty.tabs = 1;
    states.insert(states.end(), {smallest, empty});
    return states;
}

States guideStates() {
    States states;
    for (const bool isLight : {false, true})
        for (int page = 0; page < 5; ++page) {
            ScreenshotState state = screen(
                u"guide-%1-%2"_s.arg(isLight ? u"light"_s : u"dark"_s, QString::number(page)), u"guide"_s, isLight);
            state.pages = page;
            states.push_back(state);
        }
    for (const bool isLight : {false, true}) {
        ScreenshotState last =
            screen(isLight ? u"guide-light-stealth"_s : u"guide-dark-stealth"_s, u"guide"_s, isLight);
        // More than there are: the end.
        last.pages = 20;
        states.push_back(last);
    }
    ScreenshotState smallest = states.front();
    smallest.name = u"guide-smallest"_s;
    smallest.size = QSize{520, 400};
    smallest.pages = 2;
    states.push_back(smallest);
    return states;
}

States onboardingStates() {
    States states;
    for (const bool isLight : {false, true})
        for (int step = 0; step < 5; ++step) {
            ScreenshotState state =
                screen(u"onboarding-%1-%2"_s.arg(isLight ? u"light"_s : u"dark"_s).arg(step + 1), u"home"_s, isLight);
            state.onboardingStep = step;
            states.push_back(state);
        }
    ScreenshotState missing = states[4];
    missing.name = u"onboarding-permissions-missing"_s;
    missing.prepareSettings = [](SettingsFixture& settings, Preferences&) {
        settings.desktop.permissions.microphone = CaptureAuthorization::denied;
        settings.desktop.permissions.isMicrophoneGranted = false;
        settings.desktop.permissions.contentFailure = Error{TransportError{u"refused"_s}};
    };
    missing.tabs = 1;
    ScreenshotState refused = missing;
    refused.name = u"onboarding-permissions-refused"_s;
    refused.isLight = true;
    refused.pressesSpace = true;
    ScreenshotState smallest = states[2];
    smallest.name = u"onboarding-smallest"_s;
    smallest.size = QSize{520, 400};
    smallest.tabs = 3;
    states.insert(states.end(), {missing, refused, smallest});
    return states;
}

}  // namespace

std::vector<ScreenshotState> pageScreenshotStates() {
    States all;
    for (const States& some : {memoryStates(), guideStates(), onboardingStates()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

}  // namespace corvellan::test
