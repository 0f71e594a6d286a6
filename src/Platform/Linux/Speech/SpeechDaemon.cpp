#include "SpeechDaemon.h"

#include <libspeechd.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <string_view>

#include "DaemonVoices.h"

namespace corvellan {

namespace {

/// One that has just started answers only when its modules are up.
constexpr int answerLimitMilliseconds = 2500;

/// The library's call-backs carry nothing of ours but the client's number.
class Clients {
public:
    static Clients& instance() {
        static Clients clients;
        return clients;
    }

    void add(std::size_t client, SpeechDaemon::OnEvent onEvent) {
        const std::scoped_lock lock{m_mutex};
        m_clients[client] = std::move(onEvent);
    }
    void remove(std::size_t client) {
        const std::scoped_lock lock{m_mutex};
        m_clients.erase(client);
    }
    void tell(std::size_t client, std::size_t message, SpeechDaemon::Event event) {
        const std::scoped_lock lock{m_mutex};
        if (const auto found = m_clients.find(client); found != m_clients.end())
            found->second(message, event);
    }

private:
    std::mutex m_mutex;
    std::map<std::size_t, SpeechDaemon::OnEvent> m_clients;
};

void onLibraryEvent(std::size_t message, std::size_t client, SPDNotificationType type) {
    switch (type) {
    case SPD_EVENT_BEGIN: Clients::instance().tell(client, message, SpeechDaemon::Event::begun); return;
    case SPD_EVENT_END: Clients::instance().tell(client, message, SpeechDaemon::Event::ended); return;
    case SPD_EVENT_CANCEL: Clients::instance().tell(client, message, SpeechDaemon::Event::cancelled); return;
    case SPD_EVENT_INDEX_MARK:
    case SPD_EVENT_PAUSE:
    case SPD_EVENT_RESUME: return;
    }
}

enum class Presence { answers, absent, hangs };

bool isReadyFor(int socket, short events) {
    pollfd state{.fd = socket, .events = events, .revents = 0};
    return ::poll(&state, 1, answerLimitMilliseconds) == 1;
}

/// Asks for an answer first: the library waits for one for ever.
Presence presenceAt(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (!path || std::strlen(path) >= sizeof address.sun_path)
        return Presence::absent;
    std::strcpy(address.sun_path, path);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0)
        return Presence::absent;
    auto presence = Presence::absent;
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        constexpr std::string_view question = "QUIT\r\n";
        std::array<char, 4> answer{};
        const bool isAsked = ::send(socket, question.data(), question.size(), MSG_NOSIGNAL) > 0;
        const bool answers =
            isAsked && isReadyFor(socket, POLLIN) && ::recv(socket, answer.data(), answer.size(), 0) > 0;
        presence = answers ? Presence::answers : Presence::hangs;
    }
    ::close(socket);
    return presence;
}

}  // namespace

struct SpeechDaemon::Connection {
    explicit Connection(SPDConnection* opened) : library(opened) {}
    ~Connection() { spd_close(library); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    SPDConnection* library;
};

std::unique_ptr<SpeechDaemon> SpeechDaemon::open(Start start, OnEvent onEvent) {
    char* error = nullptr;
    const std::unique_ptr<SPDConnectionAddress, void (*)(SPDConnectionAddress*)> address{
        spd_get_default_address(&error), &SPDConnectionAddress__free};
    std::free(std::exchange(error, nullptr));
    if (!address)
        return nullptr;
    if (address->method == SPD_METHOD_UNIX_SOCKET) {
        const auto presence = presenceAt(address->unix_socket_name);
        if (presence == Presence::hangs || (presence == Presence::absent && start == Start::never))
            return nullptr;
    }
    SPDConnection* const connection = spd_open2("corvellan-bram", "replies", nullptr, SPD_MODE_THREADED, address.get(),
                                                start == Start::ifMissing ? 1 : 0, &error);
    std::free(error);
    if (!connection)
        return nullptr;
    return std::unique_ptr<SpeechDaemon>{
        new SpeechDaemon{std::make_unique<Connection>(connection), std::move(onEvent)}};
}

SpeechDaemon::SpeechDaemon(std::unique_ptr<Connection> connection, OnEvent onEvent)
    : m_connection(std::move(connection)),
      m_client(static_cast<std::size_t>(spd_get_client_id(m_connection->library))) {
    Clients::instance().add(m_client, std::move(onEvent));
    m_connection->library->callback_begin = onLibraryEvent;
    m_connection->library->callback_end = onLibraryEvent;
    m_connection->library->callback_cancel = onLibraryEvent;
    for (const auto notification : {SPD_BEGIN, SPD_END, SPD_CANCEL})
        spd_set_notification_on(m_connection->library, notification);
    spd_set_language(m_connection->library, "en-US");
}

SpeechDaemon::~SpeechDaemon() {
    Clients::instance().remove(m_client);
}

std::vector<SpeechVoice> SpeechDaemon::englishVoices() {
    const QByteArray module = ask("GET OUTPUT_MODULE");
    const auto named = answerLines(module);
    // "dummy" says only that nothing speaks.
    if (!named || named->empty() || named->front() == "dummy")
        return {};
    return parseDaemonVoices(ask("LIST SYNTHESIS_VOICES"), named->front());
}

/// The library's own readers of lists end the program when the daemon is lost in between, and take a second longer
/// for the thirteen thousand voices of espeak-ng.
QByteArray SpeechDaemon::ask(const char* question) {
    char* answer = nullptr;
    spd_execute_command_with_reply(m_connection->library, question, &answer);
    const std::unique_ptr<char, decltype(&std::free)> owner{answer, &std::free};
    return QByteArray{answer};
}

std::optional<std::size_t> SpeechDaemon::say(const SpeechUtterance& utterance) {
    if (utterance.voice != m_voice) {
        m_voice = utterance.voice;
        // The language's own voice is what the user has set in the daemon.
        if (m_voice && !m_voice->name.isEmpty())
            spd_set_synthesis_voice(m_connection->library, m_voice->name.toUtf8().constData());
    }
    // From -100 to 100.
    spd_set_volume(m_connection->library, static_cast<int>(std::lround(utterance.volume * 200 - 100)));
    // A plain text would take the place of the one before.
    const int message = spd_say(m_connection->library, SPD_MESSAGE, utterance.text.toUtf8().constData());
    if (message < 0)
        return std::nullopt;
    return static_cast<std::size_t>(message);
}

void SpeechDaemon::cancel() {
    spd_cancel(m_connection->library);
}

bool SpeechDaemon::isLost() const {
    if (!m_connection->library->stream)
        return true;
    pollfd state{.fd = m_connection->library->socket, .events = POLLRDHUP, .revents = 0};
    return ::poll(&state, 1, 0) > 0;
}

void SpeechDaemon::hangUp() {
    if (m_connection->library->stream)
        ::shutdown(m_connection->library->socket, SHUT_RDWR);
}

}  // namespace corvellan
