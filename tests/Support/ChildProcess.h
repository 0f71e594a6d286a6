#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "TestLoop.h"

namespace corvellan::test {

/// A program that a test runs, killed by its pid when the object goes, and when this process dies. Started without
/// QProcess, whose way to fork ThreadSanitizer does not survive.
class ChildProcess {
public:
    using Environment = std::map<std::string, std::string>;

    /// \param environment what differs from this process's own.
    /// \param outputPath where standard output and standard error go.
    ChildProcess(std::vector<std::string> command, const Environment& environment, const std::string& outputPath) {
        command.insert(command.begin(), {"setpriv", "--pdeathsig", "KILL"});
        auto variables = environment;
        for (char** entry = environ; *entry; ++entry) {
            const std::string text = *entry;
            const auto split = text.find('=');
            variables.try_emplace(text.substr(0, split), text.substr(split + 1));
        }
        std::vector<std::string> lines;
        for (const auto& [name, value] : variables)
            lines.push_back(name + "=" + value);

        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
        const int error =
            posix_spawnp(&m_pid, command[0].c_str(), &files, nullptr, pointers(command).data(), pointers(lines).data());
        posix_spawn_file_actions_destroy(&files);
        if (error != 0)
            throw std::runtime_error("can't start " + command[3]);
    }
    ~ChildProcess() { kill(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t processId() const { return m_pid; }

    [[nodiscard]] bool isRunning() {
        if (!m_status) {
            int status = 0;
            if (::waitpid(m_pid, &status, WNOHANG) == m_pid)
                m_status = status;
        }
        return !m_status;
    }

    /// Spins the main loop until the program has ended; true when it ended well.
    bool finish() {
        return spinUntil([this] { return !isRunning(); }) && WIFEXITED(*m_status) && WEXITSTATUS(*m_status) == 0;
    }

    void signal(int number) {
        if (isRunning())
            ::kill(m_pid, number);
    }

    void kill() {
        if (!isRunning())
            return;
        ::kill(m_pid, SIGKILL);
        int status = 0;
        ::waitpid(m_pid, &status, 0);
        m_status = status;
    }

private:
    static std::vector<char*> pointers(std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (auto& text : texts)
            result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    }

    pid_t m_pid = -1;
    std::optional<int> m_status;
};

}  // namespace corvellan::test
