#pragma once

#include <concepts>
#include <memory>
#include <QString>
#include <utility>

namespace corvellan {

/// What any failure payload offers: one sentence for people. A payload may also offer
/// `debugDescription()` for the logs; otherwise the sentence serves there too.
template <typename T>
concept ErrorPayload = requires(const T& payload) {
    { payload.errorDescription() } -> std::convertible_to<QString>;
};

/// Why an operation failed: a typed payload that can speak. A small value, cheap to copy,
/// usable on any thread.
///
/// Callers that must tell cases apart ask for the payload: `error.as<WebSocketError>()`.
class Error {
public:
    template <ErrorPayload T>
        requires(!std::same_as<T, Error>)
    Error(T payload)  // NOLINT(google-explicit-constructor): a payload is an Error wherever one is expected.
        : m_box(std::make_shared<Box<T>>(std::move(payload))) {}

    /// The operation was given up because its caller asked for that.
    [[nodiscard]] static Error cancelled();

    /// One sentence for the user.
    [[nodiscard]] QString errorDescription() const { return m_box->errorDescription(); }

    /// What the logs hold.
    [[nodiscard]] QString debugDescription() const { return m_box->debugDescription(); }

    /// The payload if it is a `T`, else null. The pointer lives as long as this value.
    template <typename T>
    [[nodiscard]] const T* as() const {
        const auto* box = dynamic_cast<const Box<T>*>(m_box.get());
        return box ? &box->payload : nullptr;
    }

private:
    struct AnyBox {
        virtual ~AnyBox() = default;
        [[nodiscard]] virtual QString errorDescription() const = 0;
        [[nodiscard]] virtual QString debugDescription() const = 0;
    };

    template <typename T>
    struct Box final : AnyBox {
        explicit Box(T value) : payload(std::move(value)) {}
        [[nodiscard]] QString errorDescription() const override { return payload.errorDescription(); }
        [[nodiscard]] QString debugDescription() const override {
            if constexpr (requires { payload.debugDescription(); })
                return payload.debugDescription();
            else
                return payload.errorDescription();
        }
        T payload;
    };

    std::shared_ptr<const AnyBox> m_box;
};

/// The operation was given up on request.
struct CancelledError {
    [[nodiscard]] QString errorDescription() const;
};

/// A connection, a server or a system call failed; `message` is the system's own sentence.
struct TransportError {
    QString message;

    [[nodiscard]] QString errorDescription() const { return message; }
};

}  // namespace corvellan
