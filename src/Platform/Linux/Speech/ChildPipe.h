#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>
#include <QByteArray>
#include <string>
#include <vector>

#include "Platform/Linux/PulseLoop.h"

namespace corvellan {

/// A program that turns a text into bytes: the text is its standard input, the bytes come from its
/// standard output. It is killed when the object goes. All of it on the loop's thread or under its lock.
class ChildPipe {
public:
    /// \param onReadable called on the loop's thread whenever `read` has something to give. The object
    ///        may be destroyed in it.
    /// Null when the program can't be started.
    [[nodiscard]] static std::unique_ptr<ChildPipe> start(PulseLoop& loop, std::vector<std::string> command,
                                                          const QByteArray& input, std::function<void()> onReadable);
    ~ChildPipe();
    ChildPipe(const ChildPipe&) = delete;
    ChildPipe& operator=(const ChildPipe&) = delete;

    /// What has come; nothing when that is still to come, and no bytes at the end.
    [[nodiscard]] std::optional<QByteArray> read();

    /// While it is off the program waits as soon as its pipe is full.
    void setReading(bool isReading);

private:
    ChildPipe(PulseLoop& loop, pid_t child, int output, std::function<void()> onReadable);

    PulseLoop& m_loop;
    const pid_t m_child;
    const int m_output;
    std::function<void()> m_onReadable;
    pa_io_event* m_event = nullptr;
};

}  // namespace corvellan
