#include "ChildPipe.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <utility>

namespace corvellan {

namespace {

/// A descriptor that is closed at its end.
class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int number() const { return m_number; }
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

/// A file without a name that holds `contents`, at its beginning. Nobody has to wait for a reader.
bool fill(const Descriptor& file, const QByteArray& contents) {
    for (qsizetype at = 0; at < contents.size();) {
        const auto written =
            ::write(file.number(), contents.constData() + at, static_cast<size_t>(contents.size() - at));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        at += written;
    }
    return ::lseek(file.number(), 0, SEEK_SET) == 0;
}

/// This process's variables, but for the sound server's address: engines look for it first thing even when
/// they are to play nothing, and wait for one that hangs.
std::vector<std::string> variables() {
    constexpr std::string_view server = "PULSE_SERVER=";
    std::vector<std::string> lines{std::string{server} + "unix:/dev/null"};
    for (char** entry = environ; *entry; ++entry)
        if (const std::string_view line{*entry}; !line.starts_with(server))
            lines.emplace_back(line);
    return lines;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

/// Nothing of this program's own ways is left to the other: it ignores and blocks no signal.
pid_t spawn(std::vector<std::string>& command, int input, int output) {
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t touched;
    ::sigemptyset(&touched);
    ::posix_spawnattr_setsigmask(&attributes, &touched);
    ::sigaddset(&touched, SIGPIPE);
    ::posix_spawnattr_setsigdefault(&attributes, &touched);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);

    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    pid_t child = -1;
    auto environment = variables();
    const int error = ::posix_spawnp(&child, command.front().c_str(), &files, &attributes, pointers(command).data(),
                                     pointers(environment).data());
    ::posix_spawn_file_actions_destroy(&files);
    ::posix_spawnattr_destroy(&attributes);
    return error == 0 ? child : -1;
}

}  // namespace

std::unique_ptr<ChildPipe> ChildPipe::start(PulseLoop& loop, std::vector<std::string> command, const QByteArray& input,
                                            std::function<void()> onReadable) {
    const Descriptor text{::memfd_create("text", MFD_CLOEXEC)};
    if (text.number() < 0 || !fill(text, input))
        return nullptr;
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return nullptr;
    Descriptor ours{ends[0]};
    const Descriptor theirs{ends[1]};
    // Ours alone: the program writes as it is used to.
    ::fcntl(ours.number(), F_SETFL, O_NONBLOCK);
    const pid_t child = spawn(command, text.number(), theirs.number());
    if (child < 0)
        return nullptr;
    return std::unique_ptr<ChildPipe>{new ChildPipe{loop, child, ours.release(), std::move(onReadable)}};
}

ChildPipe::ChildPipe(PulseLoop& loop, pid_t child, int output, std::function<void()> onReadable)
    : m_loop(loop),
      m_child(child),
      m_output(output),
      m_onReadable(std::move(onReadable)) {
    m_event = m_loop.api()->io_new(
        m_loop.api(), m_output, PA_IO_EVENT_INPUT,
        [](pa_mainloop_api*, pa_io_event*, int, pa_io_event_flags_t, void* self) {
            // A copy: the call may end the object.
            const auto onReadable = static_cast<ChildPipe*>(self)->m_onReadable;
            onReadable();
        },
        this);
}

ChildPipe::~ChildPipe() {
    m_loop.api()->io_free(m_event);
    ::close(m_output);
    ::kill(m_child, SIGKILL);
    while (::waitpid(m_child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::optional<QByteArray> ChildPipe::read() {
    QByteArray bytes{16'384, Qt::Uninitialized};
    while (true) {
        const auto count = ::read(m_output, bytes.data(), static_cast<size_t>(bytes.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno == EAGAIN)
            return std::nullopt;
        bytes.truncate(count < 0 ? 0 : count);
        return bytes;
    }
}

void ChildPipe::setReading(bool isReading) {
    m_loop.api()->io_enable(m_event, isReading ? PA_IO_EVENT_INPUT : PA_IO_EVENT_NULL);
}

}  // namespace corvellan
