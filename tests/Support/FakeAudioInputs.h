#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <tuple>
#include <vector>

#include "Base/AsyncStream.h"
#include "Platform/AudioInput.h"

namespace corvellan::test {

/// A device that tests speak into, from any thread. It outlives the input that was opened on it.
class FakeDevice {
public:
    explicit FakeDevice(AudioInputKind openedAs, AudioFormat nativeFormat) : kind(openedAs), format(nativeFormat) {}

    const AudioInputKind kind;
    const AudioFormat format;

    /// False when no input listens any more.
    bool deliver(std::span<const float> samples) { return deliver(samples, format); }
    bool deliver(std::span<const float> samples, AudioFormat now) {
        // Held through the call, as the real one's loop lock is: ending an input waits for it.
        const std::scoped_lock lock{m_mutex};
        if (!m_sink)
            return false;
        m_sink->onBuffer(samples, now);
        return true;
    }
    void interrupt(const Error& reason) {
        const std::scoped_lock lock{m_mutex};
        if (m_sink)
            m_sink->onInterrupted(reason);
    }
    void reopen() {
        const std::scoped_lock lock{m_mutex};
        if (m_sink)
            m_sink->onReopened();
    }
    [[nodiscard]] bool isOpen() const {
        const std::scoped_lock lock{m_mutex};
        return m_isOpen;
    }

private:
    friend class FakeAudioInput;

    mutable std::mutex m_mutex;
    std::optional<AudioInputSink> m_sink;
    bool m_isOpen = true;
};

class FakeAudioInput final : public AudioInput {
public:
    explicit FakeAudioInput(std::shared_ptr<FakeDevice> device) : m_device(std::move(device)) {}
    ~FakeAudioInput() override {
        const std::scoped_lock lock{m_device->m_mutex};
        m_device->m_sink.reset();
        m_device->m_isOpen = false;
    }
    [[nodiscard]] AudioFormat format() const override { return m_device->format; }
    void start(AudioInputSink sink) override {
        const std::scoped_lock lock{m_device->m_mutex};
        m_device->m_sink = std::move(sink);
    }

private:
    std::shared_ptr<FakeDevice> m_device;
};

/// Opens fake devices of `format`, or fails with `failure`. While `isHeld` is set an opening waits for `release`.
class FakeAudioInputs final : public AudioInputs {
public:
    AudioFormat format{.sampleRateHertz = 48'000, .channels = 1};
    std::optional<Error> failure;
    bool isHeld = false;

    void release() { m_releases.second.push(0); }

    QCoro::Task<Opened> open(AudioInputKind kind, std::stop_token stop) override {
        if (isHeld) {
            auto released = m_releases.first.next(stop);
            std::ignore = co_await released;
        }
        if (stop.stop_requested())
            co_return std::unexpected(Error::cancelled());
        if (failure)
            co_return std::unexpected(*failure);
        devices.push_back(std::make_shared<FakeDevice>(kind, format));
        co_return Open{std::make_unique<FakeAudioInput>(devices.back())};
    }

    /// One a successful opening, in order.
    std::vector<std::shared_ptr<FakeDevice>> devices;

private:
    std::pair<AsyncStream<int>, AsyncStream<int>::Producer> m_releases = AsyncStream<int>::make();
};

}  // namespace corvellan::test
