#include "ScreenshotStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using States = std::vector<ScreenshotState>;

ScreenshotState page(const QString& name, const QString& tab, bool isLight) {
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
        ScreenshotState state = page(u"memory-"_s + suffix, u"memory"_s, isLight);
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

}  // namespace

std::vector<ScreenshotState> pageScreenshotStates() {
    return memoryStates();
}

}  // namespace corvellan::test
