#include "CorvellanAudio/CoreAudioVAD.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <map>
#include <mutex>
#include <vector>

#include "Base/Executor.h"
#include "Support/TestLoop.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace corvellan::test {
namespace {

/// One device, whose queues are real threads.
class FakeVoiceActivity final : public VoiceActivityDevices {
public:
    std::expected<std::uint32_t, DeviceStatus> defaultInputDevice() override { return device; }
    bool hasDetection(std::uint32_t asked) override {
        note("has", asked);
        return isThere;
    }
    DeviceStatus setDetection(std::uint32_t asked, std::uint32_t value) override {
        note("set " + std::to_string(value), asked);
        return setStatus;
    }
    std::expected<std::uint32_t, DeviceStatus> detectionState(std::uint32_t asked) override {
        note("read", asked);
        const std::scoped_lock lock{m_mutex};
        return m_state;
    }
    DeviceStatus addStateListener(std::uint32_t asked, const std::string& queueLabel,
                                  std::shared_ptr<Listener> listener) override {
        note("add", asked);
        if (addStatus == 0)
            m_listeners.push_back(
                {.listener = std::move(listener), .queue = std::make_unique<WorkerThread>(queueLabel.c_str())});
        return addStatus;
    }
    DeviceStatus removeStateListener(std::uint32_t asked, const std::string& queueLabel,
                                     const std::shared_ptr<Listener>& listener) override {
        note("remove " + queueLabel, asked);
        for (auto& entry : m_listeners)
            if (entry.listener == listener)
                entry.listener.reset();
        return removeStatus;
    }

    /// The hardware's state becomes `state`, and all who listen are told, each on its queue.
    void change(std::expected<std::uint32_t, DeviceStatus> state) {
        {
            const std::scoped_lock lock{m_mutex};
            m_state = state;
        }
        tell();
    }
    void tell() {
        for (auto& entry : m_listeners)
            if (entry.listener)
                entry.queue->executor().post([listener = entry.listener] { (*listener)(); });
        finish();
    }
    /// Until the queues have done what was posted to them.
    void finish() {
        for (auto& entry : m_listeners)
            runAndWait(entry.queue->executor(), [] {});
    }
    [[nodiscard]] std::size_t listenerCount() const {
        return static_cast<std::size_t>(
            std::ranges::count_if(m_listeners, [](const auto& entry) { return entry.listener != nullptr; }));
    }
    std::vector<std::string> calls() const {
        const std::scoped_lock lock{m_mutex};
        return m_calls;
    }
    /// What the device would call although its owner has gone: a call that was under way.
    [[nodiscard]] std::shared_ptr<Listener> kept() const { return m_listeners.front().listener; }

    std::expected<std::uint32_t, DeviceStatus> device = 7;
    bool isThere = true;
    DeviceStatus setStatus = 0;
    DeviceStatus addStatus = 0;
    DeviceStatus removeStatus = 0;

private:
    struct Entry {
        std::shared_ptr<Listener> listener;
        std::unique_ptr<WorkerThread> queue;
    };

    void note(const std::string& call, std::uint32_t asked) {
        const std::scoped_lock lock{m_mutex};
        m_calls.push_back(device == asked ? call : call + " on another device");
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
    std::expected<std::uint32_t, DeviceStatus> m_state = 0;
    std::vector<Entry> m_listeners;
};

class CoreAudioVADTest : public testing::Test {
protected:
    /// One that keeps what it is told.
    std::shared_ptr<CoreAudioVAD> make() {
        auto vad = CoreAudioVAD::make(devices);
        vad->onVoiceActivityChanged = [this](bool isSpeaking) {
            std::array<char, 32> name{};
            pthread_getname_np(pthread_self(), name.data(), name.size());
            const std::scoped_lock lock{m_mutex};
            m_told.push_back(isSpeaking);
            m_threads.emplace_back(name.data());
        };
        return vad;
    }
    /// Enables it and gives what went to standard error.
    static std::string enableAndListen(CoreAudioVAD& vad, bool& enabled) {
        testing::internal::CaptureStderr();
        enabled = vad.enable();
        return testing::internal::GetCapturedStderr();
    }
    std::vector<bool> told() {
        const std::scoped_lock lock{m_mutex};
        return m_told;
    }
    std::vector<std::string> threads() {
        const std::scoped_lock lock{m_mutex};
        return m_threads;
    }

    FakeVoiceActivity devices;

private:
    std::mutex m_mutex;
    std::vector<bool> m_told;
    std::vector<std::string> m_threads;
};

TEST_F(CoreAudioVADTest, startsSilentAndNotAvailable) {
    const auto vad = make();
    EXPECT_EQ(vad->deviceID, 7U);
    EXPECT_FALSE(vad->isSpeaking());
    EXPECT_FALSE(vad->isAvailable());
    EXPECT_THAT(devices.calls(), IsEmpty());
}

TEST_F(CoreAudioVADTest, withoutADeviceNothingIsTried) {
    devices.device = std::unexpected(560'947'818);
    const auto vad = make();
    EXPECT_EQ(vad->deviceID, 0U);
    bool enabled = true;
    EXPECT_EQ(enableAndListen(*vad, enabled), "");
    EXPECT_FALSE(enabled);
    vad->disable();
    EXPECT_THAT(devices.calls(), IsEmpty());
}

TEST_F(CoreAudioVADTest, aDeviceWithoutThePropertyGivesFalseAndStaysNotAvailable) {
    devices.isThere = false;
    const auto vad = make();
    bool enabled = true;
    EXPECT_EQ(enableAndListen(*vad, enabled), "CoreAudio VAD not available on this device\n");
    EXPECT_FALSE(enabled);
    EXPECT_FALSE(vad->isAvailable());
    EXPECT_THAT(devices.calls(), ElementsAre("has"));
}

TEST_F(CoreAudioVADTest, aFailureToSwitchItOnIsToldWithItsNumber) {
    devices.setStatus = -50;
    const auto vad = make();
    bool enabled = true;
    EXPECT_EQ(enableAndListen(*vad, enabled), "Failed to enable CoreAudio VAD: -50\n");
    EXPECT_FALSE(enabled);
    EXPECT_FALSE(vad->isAvailable());
    EXPECT_THAT(devices.calls(), ElementsAre("has", "set 1"));
}

TEST_F(CoreAudioVADTest, withoutAListenerDetectionStaysSwitchedOn) {
    devices.addStatus = 1;
    {
        const auto vad = make();
        bool enabled = true;
        EXPECT_EQ(enableAndListen(*vad, enabled), "");
        EXPECT_FALSE(enabled);
        EXPECT_FALSE(vad->isAvailable());
    }
    EXPECT_THAT(devices.calls(), ElementsAre("has", "set 1", "add"));
}

TEST_F(CoreAudioVADTest, enablesInThisOrder) {
    const auto vad = make();
    EXPECT_TRUE(vad->enable());
    EXPECT_TRUE(vad->isAvailable());
    EXPECT_THAT(devices.calls(), ElementsAre("has", "set 1", "add", "read"));
}

TEST_F(CoreAudioVADTest, enableReportsAtOnceThatSomeoneIsAlreadySpeaking) {
    devices.change(1);
    const auto vad = make();
    ASSERT_TRUE(vad->enable());
    EXPECT_THAT(told(), ElementsAre(true));
    EXPECT_TRUE(vad->isSpeaking());
}

TEST_F(CoreAudioVADTest, enableReportsNothingWhileNobodySpeaks) {
    const auto vad = make();
    ASSERT_TRUE(vad->enable());
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(CoreAudioVADTest, changesAreToldOnTheQueueOfTheVad) {
    const auto vad = make();
    ASSERT_TRUE(vad->enable());
    devices.change(1);
    EXPECT_TRUE(vad->isSpeaking());
    devices.change(0);
    EXPECT_FALSE(vad->isSpeaking());
    EXPECT_THAT(told(), ElementsAre(true, false));
    EXPECT_THAT(threads(), ElementsAre("corvellan.vad", "corvellan.vad"));
}

TEST_F(CoreAudioVADTest, twoReadsOfTheSameStateCallTheCallBackOnce) {
    const auto vad = make();
    ASSERT_TRUE(vad->enable());
    devices.change(1);
    devices.tell();
    // Any value but 0 is speech, so this is no change.
    devices.change(2);
    EXPECT_THAT(told(), ElementsAre(true));
}

TEST_F(CoreAudioVADTest, aStateThatCannotBeReadChangesNothing) {
    const auto vad = make();
    ASSERT_TRUE(vad->enable());
    devices.change(1);
    devices.change(std::unexpected(-1));
    EXPECT_TRUE(vad->isSpeaking());
    EXPECT_THAT(told(), ElementsAre(true));
}

TEST_F(CoreAudioVADTest, withoutACallBackTheStateIsKeptAllTheSame) {
    const auto vad = CoreAudioVAD::make(devices);
    ASSERT_TRUE(vad->enable());
    devices.change(1);
    EXPECT_TRUE(vad->isSpeaking());
}

TEST_F(CoreAudioVADTest, disableWithoutEnableDoesNothing) {
    const auto vad = make();
    vad->disable();
    EXPECT_THAT(devices.calls(), IsEmpty());
}

TEST_F(CoreAudioVADTest, disableTakesTheListenerAwayAndSwitchesOff) {
    const auto vad = make();
    ASSERT_TRUE(vad->enable());
    // What these two answer is not looked at.
    devices.removeStatus = 1;
    devices.setStatus = 1;
    vad->disable();
    EXPECT_FALSE(vad->isAvailable());
    EXPECT_EQ(devices.listenerCount(), 0U);
    EXPECT_THAT(devices.calls(), ElementsAre("has", "set 1", "add", "read", "remove corvellan.vad", "set 0"));
    devices.change(1);
    EXPECT_THAT(told(), IsEmpty());
    vad->disable();
    EXPECT_EQ(devices.calls().size(), 6U);
}

TEST_F(CoreAudioVADTest, canBeEnabledAgain) {
    const auto vad = make();
    ASSERT_TRUE(vad->enable());
    vad->disable();
    ASSERT_TRUE(vad->enable());
    devices.change(1);
    EXPECT_THAT(told(), ElementsAre(true));
}

TEST_F(CoreAudioVADTest, destroyingItDisablesIt) {
    auto vad = make();
    ASSERT_TRUE(vad->enable());
    vad.reset();
    EXPECT_EQ(devices.listenerCount(), 0U);
    EXPECT_THAT(devices.calls(), ElementsAre("has", "set 1", "add", "read", "remove corvellan.vad", "set 0"));
}

TEST_F(CoreAudioVADTest, theListenerKeepsNobodyAliveAndFindsNobodyLater) {
    auto vad = make();
    ASSERT_TRUE(vad->enable());
    const std::weak_ptr<CoreAudioVAD> watched = vad;
    const auto underWay = devices.kept();
    vad.reset();
    EXPECT_TRUE(watched.expired());
    const auto calls = devices.calls().size();
    (*underWay)();
    EXPECT_EQ(devices.calls().size(), calls);
}

TEST_F(CoreAudioVADTest, mayGoWhileItsQueueIsInsideACall) {
    auto vad = make();
    // The owner lets go from the call-back: the queue's own hold is then the last one.
    vad->onVoiceActivityChanged = [&vad](bool) { vad.reset(); };
    ASSERT_TRUE(vad->enable());
    const std::weak_ptr<CoreAudioVAD> watched = vad;
    devices.change(1);
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(devices.listenerCount(), 0U);
}

}  // namespace
}  // namespace corvellan::test
