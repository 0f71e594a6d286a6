#pragma once

#include <functional>
#include <QString>

namespace corvellan {

/// Speaks a reply while it is still arriving. Main thread.
class TtsServiceProtocol {
public:
    virtual ~TtsServiceProtocol() = default;

    /// Speech will be wanted soon: whatever takes time before the first sound is done now.
    virtual void prepare() {}
    /// Takes the next piece of the reply and speaks what is complete.
    virtual void feedToken(const QString& token) = 0;
    /// Speaks what is left of the reply.
    virtual void flush() = 0;
    /// Silences speech at once and forgets the rest.
    virtual void stop() = 0;
    /// Called with the new state at each real change of it.
    virtual void setOnPlayingChanged(std::function<void(bool)> callback) = 0;
};

}  // namespace corvellan
