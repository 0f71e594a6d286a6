#include "PulseDefaultSource.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

using namespace std::chrono_literals;

namespace corvellan {

namespace {

using SteadyTime = std::chrono::steady_clock::time_point;
using Failure = PulseLookUpFailure;

struct FreeLoop {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};
struct ReleaseContext {
    void operator()(pa_context* context) const {
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
};
struct ReleaseOperation {
    void operator()(pa_operation* operation) const {
        // An answer that comes no more must find nobody.
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
};

Failure failureOf(int error) {
    switch (error) {
    case PA_ERR_ACCESS:
    case PA_ERR_AUTHKEY: return Failure::refused;
    case PA_ERR_NOENTITY: return Failure::noSource;
    default: return Failure::noServer;
    }
}

QString text(const char* bytes) {
    return QString::fromUtf8(bytes ? bytes : "");
}

PulseDefaultSource describe(const pa_source_info& info) {
    PulseDefaultSource source{.index = info.index,
                              .name = text(info.name),
                              .driver = text(info.driver),
                              .isMonitor = info.monitor_of_sink != PA_INVALID_INDEX,
                              .properties = {}};
    void* position = nullptr;
    while (const char* const key = pa_proplist_iterate(info.proplist, &position)) {
        // Null for a value that is no text.
        if (const char* const value = pa_proplist_gets(info.proplist, key))
            source.properties.emplace(text(key), text(value));
    }
    return source;
}

/// One connection for one question, driven on the calling thread.
class LookUp {
public:
    explicit LookUp(SteadyTime deadline) : m_deadline(deadline) {}

    std::expected<PulseDefaultSource, Failure> run() {
        if (!m_loop)
            return std::unexpected(Failure::noServer);
        m_context.reset(pa_context_new(pa_mainloop_get_api(m_loop.get()), "Corvellan Bram"));
        if (!m_context || pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
            return std::unexpected(Failure::noServer);
        if (!turnUntil([this] { return isReady(); }, m_deadline))
            return std::unexpected(failure());

        auto name = readName();
        // PipeWire names a placeholder while it decides.
        while (name && name->starts_with('@')) {
            const auto nextTry = std::chrono::steady_clock::now() + 100ms;
            if (nextTry > m_deadline)
                return std::unexpected(Failure::noServer);
            turnUntil([] { return false; }, nextTry);
            name = readName();
        }
        if (!name)
            return std::unexpected(failure());
        if (name->empty())
            return std::unexpected(Failure::noSource);
        return readSource(*name);
    }

private:
    /// Empty when the server answered no more.
    std::optional<std::string> readName() {
        std::string name;
        const bool answered = ask(pa_context_get_server_info(
            m_context.get(),
            [](pa_context*, const pa_server_info* info, void* kept) {
                if (info && info->default_source_name)
                    *static_cast<std::string*>(kept) = info->default_source_name;
            },
            &name));
        return answered ? std::optional{name} : std::nullopt;
    }

    std::expected<PulseDefaultSource, Failure> readSource(const std::string& name) {
        std::optional<PulseDefaultSource> source;
        const bool answered = ask(pa_context_get_source_info_by_name(
            m_context.get(), name.c_str(),
            [](pa_context*, const pa_source_info* info, int, void* kept) {
                if (info)
                    *static_cast<std::optional<PulseDefaultSource>*>(kept) = describe(*info);
            },
            &source));
        if (!answered)
            return std::unexpected(failure());
        if (!source) {
            // The answer to a question that was refused looks like one about a source that is not there.
            const bool isRefused = failureOf(pa_context_errno(m_context.get())) == Failure::refused;
            return std::unexpected(isRefused ? Failure::refused : Failure::noSource);
        }
        return *source;
    }

    bool ask(pa_operation* question) {
        const std::unique_ptr<pa_operation, ReleaseOperation> operation{question};
        return operation &&
               turnUntil(
                   [this, &operation] {
                       return !isReady() || pa_operation_get_state(operation.get()) != PA_OPERATION_RUNNING;
                   },
                   m_deadline) &&
               pa_operation_get_state(operation.get()) == PA_OPERATION_DONE;
    }

    [[nodiscard]] bool isReady() const { return pa_context_get_state(m_context.get()) == PA_CONTEXT_READY; }

    [[nodiscard]] Failure failure() const {
        return PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context.get())) ? Failure::noServer
                                                                         : failureOf(pa_context_errno(m_context.get()));
    }

    /// Turns the loop until `condition` holds; false when the time or the connection ended first.
    template <typename Condition>
    bool turnUntil(Condition condition, SteadyTime end) {
        while (!condition()) {
            const auto left = std::chrono::ceil<std::chrono::microseconds>(end - std::chrono::steady_clock::now());
            if (left <= 0us || !PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context.get())))
                return false;
            const auto wait = static_cast<int>(std::min<std::chrono::microseconds>(left, 1s).count());
            if (pa_mainloop_prepare(m_loop.get(), wait) < 0 || pa_mainloop_poll(m_loop.get()) < 0 ||
                pa_mainloop_dispatch(m_loop.get()) < 0)
                return false;
        }
        return true;
    }

    SteadyTime m_deadline;
    std::unique_ptr<pa_mainloop, FreeLoop> m_loop{pa_mainloop_new()};
    std::unique_ptr<pa_context, ReleaseContext> m_context;
};

}  // namespace

std::expected<PulseDefaultSource, PulseLookUpFailure> readDefaultSource(std::chrono::milliseconds limit) {
    return LookUp{std::chrono::steady_clock::now() + limit}.run();
}

}  // namespace corvellan
