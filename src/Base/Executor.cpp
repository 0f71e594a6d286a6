#include "Executor.h"

#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <QEventLoop>
#include <QSocketNotifier>
#include <semaphore>
#include <system_error>
#include <thread>

namespace corvellan {

namespace {

thread_local Executor* currentExecutor = nullptr;

struct Node {
    std::function<void()> work;
    Node* next = nullptr;
};

}  // namespace

Executor* Executor::current() {
    return currentExecutor;
}

void Executor::setCurrent(Executor* executor) {
    currentExecutor = executor;
}

// Posted work is a lock-free stack that the loop takes whole and turns round. The eventfd is
// written only when the stack was empty, so that a busy queue costs no system calls.
struct EventLoopExecutor::Impl {
    std::atomic<Node*> posted = nullptr;
    int wakeDescriptor = -1;
    std::thread::id thread = std::this_thread::get_id();
    std::unique_ptr<QSocketNotifier> notifier;
    Executor* previous = nullptr;

    static Node* reversed(Node* node) {
        Node* result = nullptr;
        while (node) {
            Node* const next = node->next;
            node->next = result;
            result = node;
            node = next;
        }
        return result;
    }

    void drain() {
        eventfd_t count = 0;
        eventfd_read(wakeDescriptor, &count);
        Node* node = reversed(posted.exchange(nullptr, std::memory_order_acquire));
        while (node) {
            const std::unique_ptr<Node> owned{node};
            node = node->next;
            owned->work();
        }
    }
};

EventLoopExecutor::EventLoopExecutor() : m_impl(std::make_unique<Impl>()) {
    m_impl->wakeDescriptor = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (m_impl->wakeDescriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    m_impl->notifier = std::make_unique<QSocketNotifier>(m_impl->wakeDescriptor, QSocketNotifier::Read);
    QObject::connect(m_impl->notifier.get(), &QSocketNotifier::activated, m_impl->notifier.get(),
                     [impl = m_impl.get()] { impl->drain(); });
    m_impl->previous = current();
    setCurrent(this);
}

EventLoopExecutor::~EventLoopExecutor() {
    m_impl->notifier.reset();
    setCurrent(m_impl->previous);
    Node* node = m_impl->posted.exchange(nullptr, std::memory_order_acquire);
    while (node) {
        const std::unique_ptr<Node> owned{node};
        node = node->next;
    }
    ::close(m_impl->wakeDescriptor);
}

void EventLoopExecutor::post(std::function<void()> work) {
    auto* const node = new Node{std::move(work)};
    Node* head = m_impl->posted.load(std::memory_order_relaxed);
    do {
        node->next = head;
    } while (!m_impl->posted.compare_exchange_weak(head, node, std::memory_order_acq_rel, std::memory_order_relaxed));
    if (!head)
        eventfd_write(m_impl->wakeDescriptor, 1);
}

bool EventLoopExecutor::isCurrent() const {
    return std::this_thread::get_id() == m_impl->thread;
}

// A std::thread and not a QThread: its start and join are visible to ThreadSanitizer.
struct WorkerThread::Impl {
    std::thread thread;
    // Both live on the thread's own stack.
    EventLoopExecutor* executor = nullptr;
    QEventLoop* loop = nullptr;
    std::binary_semaphore ready{0};
};

WorkerThread::WorkerThread(const char* name) : m_impl(std::make_unique<Impl>()) {
    m_impl->thread = std::thread([impl = m_impl.get(), name] {
        pthread_setname_np(pthread_self(), name);
        // The loop comes first: it makes the event dispatcher that the executor's notifier needs.
        QEventLoop loop;
        EventLoopExecutor executor;
        impl->loop = &loop;
        impl->executor = &executor;
        impl->ready.release();
        loop.exec();
    });
    m_impl->ready.acquire();
}

WorkerThread::~WorkerThread() {
    // Posted, so that what was posted before still runs.
    m_impl->executor->post([loop = m_impl->loop] { loop->quit(); });
    m_impl->thread.join();
}

Executor& WorkerThread::executor() const {
    return *m_impl->executor;
}

void runAndWait(Executor& executor, const std::function<void()>& work) {
    if (executor.isCurrent()) {
        work();
        return;
    }
    std::binary_semaphore done{0};
    executor.post([&] {
        work();
        done.release();
    });
    done.acquire();
}

}  // namespace corvellan
