#include "ScreenshotStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using States = ScreenshotStateList;

void typicalCall(SessionViewModel& session) {
    session.setStatusText(u"Coaching"_s);
    session.setCoachingMessage(u"Ask who signs off on the budget"_s);
    session.setCoachingType(CoachingType::whisper);
    session.setCoachingUrgency(CoachingUrgency::medium);
    session.setCallStage(CallStage::qualification);
    session.setCallPhase(u"needs_analysis"_s);
    session.setMeddicScore({.metrics = true, .economicBuyer = false, .identifyPain = true});
    session.setMeddicEvidence({u"\"Each outage costs us forty thousand euros\""_s, std::nullopt, std::nullopt,
                               std::nullopt, u"\"We lose two days a month to manual reports\""_s, std::nullopt});
    session.setBuyerDisc({.discType = DiscType::dominant, .confidence = DiscConfidence::medium});
    session.setSentiment(CustomerSentiment::interested);
}

/// A typical call with something more.
template <typename Change>
ScreenshotState call(const QString& name, Change change) {
    return {.name = name, .prepare = [change](SessionViewModel& session) {
                typicalCall(session);
                change(session);
            }};
}

ScreenshotState tabbed(ScreenshotState state, int tabs) {
    state.tabs = tabs;
    return state;
}

ScreenshotState tip(const QString& name, CoachingType type, const QString& message, CoachingUrgency urgency) {
    return call(name, [=](SessionViewModel& session) {
        session.setCoachingType(type);
        session.setCoachingMessage(message);
        session.setCoachingUrgency(urgency);
    });
}

States tipStates() {
    using enum CoachingType;
    using enum CoachingUrgency;
    return {
        tip(u"tip-whisper"_s, whisper, u"Ask who signs off on the budget"_s, low),
        tip(u"tip-question"_s, questionPrompt, u"What happens if you change nothing this year?"_s, medium),
        tip(u"tip-objection-urgent"_s, objectionHandler, u"Acknowledge price, then return to saved hours"_s, high),
        tip(u"tip-data"_s, dataPoint, u"Similar firms cut support tickets by 80 %"_s, medium),
        tip(u"tip-stage"_s, stageTransition, u"Pain confirmed, move on to the demo"_s, medium),
        tip(u"tip-silence"_s, silence, u"Let the silence work"_s, low),
        tip(u"tip-listen"_s, listen, u"Stop talking, the customer is sharing something"_s, low),
        call(u"tip-product-hint"_s,
             [](auto& session) { session.setProductHint(u"Zelto Monitor: alerts before the outage"_s); }),
        call(u"tip-kind-without-message"_s,
             [](auto& session) {
                 session.setCoachingMessage({});
                 session.setCoachingType(listen);
                 session.setStatusText(u"Listening..."_s);
             }),
    };
}

States callStates() {
    return {
        {.name = u"start-empty"_s, .prepare = [](auto& session) { session.setStatusText(u"Connecting..."_s); }},
        call(u"cold-call"_s,
             [](auto& session) {
                 session.setCoachingMode(AudienceType::coldCall);
                 session.setCoachingMessage(u"Earn thirty seconds, then ask permission"_s);
             }),
        call(u"mode-channel"_s, [](auto& session) { session.setCoachingMode(AudienceType::channelPartner); }),
        call(u"mode-discovery"_s, [](auto& session) { session.setCoachingMode(AudienceType::discovery); }),
        call(u"stage-renewal"_s,
             [](auto& session) {
                 session.setCallStage(CallStage::renewal);
                 session.setCallPhase({});
             }),
        call(u"stage-closing-six-of-six"_s,
             [](auto& session) {
                 session.setCallStage(CallStage::closing);
                 session.setCallPhase(u"final_commitment"_s);
                 session.setMeddicScore({true, true, true, true, true, true});
             }),
        call(u"checklist-evidence"_s,
             [](auto& session) {
                 session.setMeddicScore({true, true, true, true, false, true});
                 session.setMeddicEvidence(
                     {u"\"Forty thousand euros an outage, three times last quarter, and that is before the fines "
                      "that our own customers charge us for every hour\""_s,
                      u"\"Sandra in finance decides\""_s, u"\"Uptime, price, EU hosting\""_s,
                      u"\"Pilot, then the board in June\""_s, std::nullopt, u"\"I will push this myself\""_s});
             }),
        call(u"checklist-flash"_s,
             [](auto& session) {
                 session.setMeddicScore({.metrics = true, .economicBuyer = true, .identifyPain = true});
                 session.setMeddicJustConfirmed(1);
             }),
        call(u"speaking-notice"_s, [](auto& session) { session.setIsTtsPlaying(true); }),
        call(u"error"_s,
             [](auto& session) { session.setErrorMessage(u"Microphone transcription stopped: connection lost"_s); }),
        call(u"stealth"_s, [](auto& session) { session.setIsStealthEnabled(true); }),
        tabbed(call(u"stealth-control-focus"_s, [](auto&) {}), 1),
        tabbed(call(u"stealth-warning-focus"_s, [](auto& session) { session.setIsStealthEnabled(true); }), 2),
    };
}

States companyStates() {
    auto company = call(u"company"_s, [](auto&) {});
    company.company = u"Nordwind Logistics GmbH"_s;

    auto folded =
        call(u"company-brief-folded"_s, [](auto& session) { session.setCrmBrief(u"<b>Nordwind</b>: 240 devices."_s); });
    folded.company = company.company;

    auto unfolded = call(u"company-brief-unfolded"_s, [](auto& session) {
        session.setCoachingMode(AudienceType::coldCall);
        session.setCrmBrief(
            u"<b>Nordwind Logistics</b>, Hamburg\n\n\n\n240 devices under contract until March, three "
            "outages last quarter. Contact: Sandra Weiss, head of IT. Open quote of EUR 48,000 since "
            "January; asks for EU hosting and a fixed price."_s);
    });
    unfolded.company = company.company;
    unfolded.unfoldsBrief = true;

    auto handoff = call(u"company-handoff"_s, [](auto& session) {
        session.setCoachingMode(AudienceType::coldCall);
        session.setCrmBrief(u"240 devices."_s);
        session.setCachedHandoff(HandoffResponse{.handoffNote = u"# Nordwind"_s});
    });
    handoff.company = company.company;
    auto focused = unfolded;
    focused.name = u"focus-company"_s;
    focused.tabs = 1;
    auto footer = unfolded;
    footer.name = u"focus-footer"_s;
    footer.tabs = 2;
    return {company, folded, unfolded, handoff, focused, footer};
}

States buyerStates() {
    States states;
    const auto named = [](QLatin1StringView prefix, std::string_view raw) {
        return prefix + QLatin1StringView{raw.data(), static_cast<qsizetype>(raw.size())};
    };
    for (const DiscTypeRow& row : discTypeRows)
        states.push_back(call(named("disc-"_L1, row.raw), [type = row.value](auto& session) {
            session.setBuyerDisc({.discType = type, .confidence = DiscConfidence::high});
        }));
    for (const CustomerSentimentRow& row : customerSentimentRows)
        states.push_back(
            call(named("mood-"_L1, row.raw), [mood = row.value](auto& session) { session.setSentiment(mood); }));
    return states;
}

void everything(SessionViewModel& session) {
    typicalCall(session);
    session.setCoachingType(CoachingType::objectionHandler);
    session.setCoachingUrgency(CoachingUrgency::high);
    session.setCoachingMessage(u"Acknowledge price, then return to saved hours and the cost of waiting"_s);
    session.setProductHint(u"Zelto Monitor: alerts before the outage"_s);
    session.setCrmBrief(u"240 devices under contract."_s);
    session.setIsTtsPlaying(true);
    session.setErrorMessage(u"System audio is not available: the default output has no monitor"_s);
}

void longTexts(SessionViewModel& session) {
    everything(session);
    QString message;
    constexpr int repetitions = 12;
    for (int i = 0; i < repetitions; ++i)
        message += u"This tip is far longer than ten words and must not push the footer away. "_s;
    session.setCoachingMessage(message);
    session.setCallPhase(u"a_phase_whose_name_goes_on_and_on_and_on_until_there_is_no_room_left_for_it_on_this_line"_s);
    session.setErrorMessage(
        u"The transcription provider refused the connection: 429 Too Many Requests, try again in a minute; the coach "
        "goes on listening to the other side, and nothing that was said is lost from the record of this call"_s);
}

void conversation(SessionViewModel& session) {
    typicalCall(session);
    session.setElapsedSeconds(754);
    session.setAudioLevel(0.46F);
    session.setSystemAudioLevel(0.12F);
    constexpr std::array lines{
        std::pair{TranscriptSource::mic, u"Hi Tom, this is Anna from Fernhill. Thanks for taking the time today."},
        std::pair{TranscriptSource::system, u"Hello Anna. I only have a few minutes, so please keep it brief."},
        std::pair{TranscriptSource::mic, u"Of course."},
        std::pair{TranscriptSource::mic, u"What does an outage cost you today?"},
        std::pair{TranscriptSource::system, u"Forty thousand euros, three times last quarter."},
        std::pair{TranscriptSource::coach, u"Ask who signs off on the budget"},
    };
    for (const auto& [source, text] : lines)
        session.transcriptLines().append({.source = source, .text = QString::fromUtf16(text)});
    session.setCounterpartStreamingText(u"And that is before the fines that"_s);
}

States sessionLayoutStates() {
    States states;
    for (const double scale : {1.0, 1.5, 2.0})
        for (const auto& [layout, presses] : {std::pair{u"full"_s, 0}, {u"coach"_s, 1}, {u"mini"_s, 2}}) {
            ScreenshotState state{.name = u"session-%1-%2"_s.arg(layout, QString::number(scale, 'f', 1)),
                                  .prepare = conversation,
                                  .company = u"Nordwind Logistics GmbH"_s,
                                  .fontScale = scale};
            state.layoutPresses = presses;
            if (presses == 0)
                state.layout = layout;
            states.push_back(state);
        }
    ScreenshotState empty{.name = u"session-empty"_s,
                          .prepare = [](auto& session) { session.setStatusText(u"Listening..."_s); }};
    ScreenshotState training{.name = u"session-training"_s, .prepare = [](auto& session) {
                                 conversation(session);
                                 session.setIsTtsPlaying(true);
                                 session.setTrainStage(TrainStage::waitingLLM);
                                 session.setErrorMessage(u"Microphone transcription stopped: connection lost"_s);
                                 session.setCachedHandoff(HandoffResponse{.handoffNote = u"# Nordwind"_s});
                             }};
    states.insert(states.end(), {empty, training});
    return states;
}

States layoutStates() {
    States states;
    for (const double scale : {1.0, 1.5, 2.0}) {
        const QString suffix = QString::number(scale, 'f', 1);
        ScreenshotState state{.name = u"scale-"_s + suffix,
                              .prepare = everything,
                              .company = u"Nordwind Logistics GmbH"_s,
                              .fontScale = scale};
        states.push_back(state);
        state.name = u"long-texts-"_s + suffix;
        state.prepare = longTexts;
        state.company = u"The Extraordinarily Long-Named Holding Company of Northern Europe and Far Beyond"_s;
        states.push_back(state);
    }
    return states;
}

States idleStates() {
    States states{
        {.name = u"idle-ready"_s, .prepare = [](auto& session) { session.setServerURL(u"ws://127.0.0.1:3001/ws"_s); }},
        {.name = u"idle-after-call"_s,
         .prepare =
             [](auto& session) {
                 session.setStatusText(u"Session complete"_s);
                 session.setLastSummary(SummaryPayload{
                     .durationSecs = 123, .turns = 14, .meddic = {true, true, true, false, true, false}});
             }},
        {.name = u"idle-error"_s,
         .prepare =
             [](auto& session) {
                 session.setStatusText(u"Error"_s);
                 session.setErrorMessage(u"Server did not provide ephemeral token"_s);
             }},
        {.name = u"idle-error-long"_s,
         .prepare =
             [](auto& session) {
                 session.setStatusText(u"Error"_s);
                 session.setErrorMessage(
                     u"No microphone found. Plug one in, or choose another input in the sound settings of your "
                     "desktop, and start again. The coach could not be reached either: the connection to "
                     "coach.corvellan.example was refused, which usually means that the network blocks it or that "
                     "the server is being updated. Nothing was recorded and nothing was sent. If this goes on, ask "
                     "whoever runs the server, and name the time at which you tried."_s);
                 session.setLastSummary(SummaryPayload{.durationSecs = 3725, .turns = 14, .meddic = {true}});
             }},
    };
    auto focused = states.front();
    focused.name = u"idle-focus"_s;
    focused.tabs = 1;
    states.push_back(focused);
    auto light = states[1];
    light.name = u"idle-light"_s;
    light.isLight = true;
    auto lightError = states[2];
    lightError.name = u"idle-error-light"_s;
    lightError.isLight = true;
    states.insert(states.end(), {light, lightError});
    for (ScreenshotState& state : states)
        state.isCall = false;
    return states;
}

States settingsStates() {
    const ScreenshotState plain{.name = u"settings"_s,
                                .prepare = [](SessionViewModel&) {},
                                .isCall = false,
                                .arrange = [](const ScreenshotScene& scene) { scene.openTab(u"settings"_s); }};
    ScreenshotState rich = plain;
    rich.prepare = [](SessionViewModel& session) {
        session.setIsConnected(true);
        session.setStatusText(u"Listening..."_s);
        session.setUserEmail(u"sandra.weiss-oberhauser@nordwind-logistics.example"_s);
        session.setSensorConnected(true);
        session.setExtensionContext(ExtensionContextPayload{.entityType = u"contact"_s,
                                                            .entityId = u"7"_s,
                                                            .displayName = u"Sandra Weiss"_s,
                                                            .companyName = u"Nordwind Logistics GmbH"_s});
        session.setExtensionCallActive(true);
    };
    rich.prepareSettings = [](SettingsFixture& settings, Preferences& preferences) {
        preferences.setString(u"serverMode"_s, u"custom"_s);
        preferences.setString(u"customServerURL"_s, u"wss://coach.nordwind-logistics.example/ws"_s);
        settings.desktop.permissions.contentFailure = Error{TransportError{u"refused"_s}};
        settings.desktop.notifications.granted = NotificationAuthorization::denied;
        settings.desktop.loginItems.isRegistered = true;
    };
    States states;
    for (int page = 0; page < 4; ++page)
        for (const bool isLight : {false, true}) {
            ScreenshotState state = isLight ? rich : plain;
            state.isLight = isLight;
            state.pages = page;
            state.name = u"settings-%1-%2"_s.arg(isLight ? u"light"_s : u"dark"_s, QString::number(page));
            states.push_back(state);
        }
    for (const int page : {0, 2, 4}) {
        ScreenshotState smallest = rich;
        smallest.name = u"settings-smallest-%1"_s.arg(page);
        smallest.size = QSize{520, 400};
        smallest.pages = page;
        states.push_back(smallest);
    }
    for (const int tabs : {1, 2, 5}) {
        ScreenshotState focused = plain;
        focused.name = u"settings-focus-%1"_s.arg(tabs);
        focused.tabs = tabs;
        states.push_back(focused);
    }
    for (const bool isLight : {false, true}) {
        ScreenshotState opened = plain;
        opened.name = isLight ? u"settings-picker-light"_s : u"settings-picker-dark"_s;
        opened.tabs = 1;
        opened.pressesSpace = true;
        opened.isLight = isLight;
        states.push_back(opened);
    }
    ScreenshotState scaled = rich;
    scaled.name = u"settings-scale-2.0"_s;
    scaled.fontScale = 2;
    scaled.pages = 1;
    states.push_back(scaled);
    return states;
}

}  // namespace

States screenshotStates() {
    States all;
    for (const States& some : {tipStates(), callStates(), companyStates(), buyerStates(), layoutStates(),
                               sessionLayoutStates(), idleStates(), preparationStates(), historyStates(),
                               settingsStates(), pageScreenshotStates(), trainingStates()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

}  // namespace corvellan::test
