#include "EspeakSynthesizer.h"

#include <algorithm>
#include <QString>
#include <utility>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

constexpr auto programName = "Corvellan Bram";
constexpr auto title = "Spoken reply";

/// The list takes 20 milliseconds; an engine that is silent for so long is none.
constexpr auto listingLimit = 3s;
/// Nothing moved for so long: neither the engine nor the sound.
constexpr auto patience = 5s;
/// The engine is faster than the voice; so many samples are kept ready, ten seconds or so, and no more.
constexpr std::size_t mostAhead = 220'500;
constexpr qsizetype longestListing = 1'048'576;

/// What the engine would not read but obey.
QByteArray readable(const QString& text) {
    QString plain = text;
    for (QChar& character : plain)
        if (character.category() == QChar::Other_Control)
            character = u' ';
    // Two brackets begin the engine's own alphabet.
    plain.replace(u"[["_s, u"[ ["_s);
    return plain.toUtf8() + '\n';
}

}  // namespace

EspeakSynthesizer::EspeakSynthesizer(Clock& clock, OwnSpeech& ownSpeech, OnSpeechFailure onFailure, std::string program)
    : m_clock(clock),
      m_ownSpeech(ownSpeech),
      m_onFailure(std::move(onFailure)),
      m_program(std::move(program)),
      m_listingLimit(m_loop, [this] { m_voices.empty() ? endListing() : tellVoices(); }),
      m_watchdog(m_loop, [this] { watchdogDue(); }) {}

EspeakSynthesizer::~EspeakSynthesizer() {
    {
        const PulseLoop::Lock lock{m_loop};
        m_onUtteranceEnded = nullptr;
        m_lister.reset();
        m_listingLimit.disarm();
        m_queue.clear();
        dropSpeaking();
        dropContext();
    }
    m_loop.stop();
}

void EspeakSynthesizer::setOnUtteranceEnded(std::function<void()> callback) {
    const PulseLoop::Lock lock{m_loop};
    m_onUtteranceEnded = std::move(callback);
}

void EspeakSynthesizer::startLoop() {
    if (!std::exchange(m_isRunning, true))
        m_loop.start();
}

// The voices.

void EspeakSynthesizer::readVoices(std::function<void(Voices)> onRead) {
    const PulseLoop::Lock lock{m_loop};
    startLoop();
    m_onRead.push_back(std::move(onRead));
    if (m_lister)
        return;
    m_listing.clear();
    m_lister = ChildPipe::start(m_loop, {m_program, "--voices=en"}, {}, [this] { listingReadable(); });
    if (m_lister)
        m_listingLimit.arm(listingLimit);
    else
        endListing();
    // The first sound needs the server: its greeting is over by then.
    if (!m_context)
        connect();
}

void EspeakSynthesizer::listingReadable() {
    while (const auto bytes = m_lister->read()) {
        m_listing += *bytes;
        if (bytes->isEmpty() || m_listing.size() > longestListing) {
            endListing();
            return;
        }
    }
}

void EspeakSynthesizer::endListing() {
    m_voices = parseEspeakVoices(m_listing, isMbrolaInstalled);
    tellVoices();
}

void EspeakSynthesizer::tellVoices() {
    m_lister.reset();
    m_listingLimit.disarm();
    Voices voices;
    for (const EspeakVoice& voice : m_voices) {
        voices.all.push_back(voice.voice);
        if (!voices.americanEnglish && voice.voice.language == u"en-US")
            voices.americanEnglish = voice.voice;
    }
    if (!voices.all.empty())
        voices.engine = QStringLiteral("espeak-ng");
    for (const auto& onRead : std::exchange(m_onRead, {}))
        onRead(voices);
}

// The utterances.

void EspeakSynthesizer::speak(SpeechUtterance utterance) {
    const PulseLoop::Lock lock{m_loop};
    startLoop();
    m_queue.push_back(std::move(utterance));
    startNext();
}

void EspeakSynthesizer::stopSpeaking() {
    const PulseLoop::Lock lock{m_loop};
    auto ended = m_queue.size() + (m_speaking ? 1 : 0);
    m_queue.clear();
    dropSpeaking();
    for (; ended > 0 && m_onUtteranceEnded; --ended)
        m_onUtteranceEnded();
}

std::vector<std::string> EspeakSynthesizer::commandFor(const SpeechUtterance& utterance) const {
    // "-b 1": the text is UTF-8, whatever the user's language says.
    std::vector<std::string> command{m_program, "-b", "1", "--stdin", "--stdout"};
    if (!utterance.voice)
        return command;
    const auto voice = std::ranges::find(m_voices, *utterance.voice, &EspeakVoice::voice);
    // Another engine's voice, which has failed, or the language's own.
    const QString identifier = voice != m_voices.end() ? voice->identifier : u"en-us"_s;
    command.insert(command.end(), {"-v", identifier.toStdString()});
    return command;
}

void EspeakSynthesizer::startNext() {
    if (m_speaking || m_queue.empty())
        return;
    if (!m_context)
        connect();
    if (!m_context) {
        fail(SpeechFailure::noSound);
        return;
    }
    auto engine = ChildPipe::start(m_loop, commandFor(m_queue.front()), readable(m_queue.front().text),
                                   [this] { engineReadable(); });
    if (!engine) {
        fail(SpeechFailure::noEngine);
        return;
    }
    m_speaking = std::make_unique<Speaking>();
    m_speaking->utterance = std::move(m_queue.front());
    m_speaking->engine = std::move(engine);
    m_queue.pop_front();
    m_watchdog.arm(patience);
}

void EspeakSynthesizer::engineReadable() {
    // Not more than is wanted: an engine can write faster than it is read.
    while (m_speaking->sound.size() < mostAhead) {
        const auto bytes = m_speaking->engine->read();
        if (!bytes)
            break;
        m_watchdog.arm(patience);
        m_speaking->sound.add(*bytes);
        if (bytes->isEmpty()) {
            m_speaking->engine.reset();
            break;
        }
    }
    supply();
}

/// Takes the sound as far as it can go now.
void EspeakSynthesizer::supply() {
    Speaking& now = *m_speaking;
    const auto rate = now.sound.sampleRateHertz();
    if (now.sound.isBroken() || (!now.engine && !rate)) {
        // An engine that gives no sound at all does not work here.
        fail(SpeechFailure::noEngine);
        return;
    }
    if (!rate || pa_context_get_state(m_context) != PA_CONTEXT_READY)
        return;
    if (!now.stream)
        now.stream = PulsePlayStream::open(m_context, title, *rate, *this);
    if (!now.stream) {
        fail(SpeechFailure::noSound);
        return;
    }
    const auto samples = now.sound.take(now.stream->room());
    if (!samples.empty()) {
        // Here and not as the stream's volume: the server would remember that for the next time.
        for (float& sample : samples)
            sample *= static_cast<float>(now.utterance.volume);
        if (!std::exchange(now.isHeard, true))
            m_ownSpeech.begin();
        if (!now.stream->write(samples)) {
            fail(SpeechFailure::noSound);
            return;
        }
        m_watchdog.arm(patience);
    }
    if (now.engine) {
        now.engine->setReading(now.sound.size() < mostAhead);
    } else if (now.sound.size() == 0 && !now.isDraining) {
        now.isDraining = true;
        if (!now.stream->drain())
            fail(SpeechFailure::noSound);
    }
}

void EspeakSynthesizer::finish() {
    dropSpeaking();
    if (m_onUtteranceEnded)
        m_onUtteranceEnded();
    startNext();
}

/// Nothing of what waits can be spoken. What comes later is tried anew.
void EspeakSynthesizer::fail(SpeechFailure failure) {
    auto ended = m_queue.size() + (m_speaking ? 1 : 0);
    m_queue.clear();
    dropSpeaking();
    if (failure == SpeechFailure::noSound)
        dropContext();
    m_onFailure(failure);
    for (; ended > 0 && m_onUtteranceEnded; --ended)
        m_onUtteranceEnded();
}

void EspeakSynthesizer::dropSpeaking() {
    m_watchdog.disarm();
    if (!m_speaking)
        return;
    const bool wasHeard = m_speaking->isHeard;
    m_speaking.reset();
    if (wasHeard)
        m_ownSpeech.end(m_clock.now());
}

void EspeakSynthesizer::watchdogDue() {
    const bool isEngineSilent = m_speaking->engine && m_speaking->sound.size() == 0;
    fail(isEngineSilent ? SpeechFailure::noEngine : SpeechFailure::noSound);
}

void EspeakSynthesizer::streamHungry(PulsePlayStream&) {
    supply();
}

void EspeakSynthesizer::streamDrained(PulsePlayStream&) {
    finish();
}

void EspeakSynthesizer::streamFailed(PulsePlayStream&) {
    fail(SpeechFailure::noSound);
}

// The sound server.

void EspeakSynthesizer::connect() {
    m_context = pa_context_new(m_loop.api(), programName);
    if (!m_context)
        return;
    pa_context_set_state_callback(
        m_context, [](pa_context*, void* self) { static_cast<EspeakSynthesizer*>(self)->contextStateChanged(); }, this);
    if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        dropContext();
}

void EspeakSynthesizer::contextStateChanged() {
    const pa_context_state_t state = pa_context_get_state(m_context);
    if (state == PA_CONTEXT_READY) {
        if (m_speaking)
            supply();
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
        if (m_speaking)
            fail(SpeechFailure::noSound);
        else
            dropContext();
    }
}

void EspeakSynthesizer::dropContext() {
    if (!m_context)
        return;
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_disconnect(m_context);
    pa_context_unref(std::exchange(m_context, nullptr));
}

}  // namespace corvellan
