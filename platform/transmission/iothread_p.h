#pragma once

#include "platform/base/instancecounter.h"
#include "platform/base/sync.h"

#include <zmq.hpp>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace sbs {

class ServerCore;

/// The one thread that listens for all servers of the process, with their ZeroMQ context and the
/// answers to who may come in. It lives while a server holds it.
class IoThread : private Kelm::Counted<IoThread> {
public:
    static constexpr const char *kInstanceName = "sbs::IoThread";

    /// The running one, or a new one.
    static std::shared_ptr<IoThread> shared();
    IoThread();
    ~IoThread();

    zmq::context_t &context() { return m_context; }
    /// From now on \a server is served.
    void add(std::shared_ptr<ServerCore> server);
    /// Shuts the server down on the I/O thread and waits for that.
    void remove(const std::shared_ptr<ServerCore> &server);
    /// Makes the thread look at all its servers. Any thread.
    void wake();

private:
    using Work = std::function<void()>;

    void run();
    void execute(Work work); // on the I/O thread, and waits
    void runWork();
    int timeout();
    void waitForEvents(int milliseconds);
    void answerKeyQuestions();
    bool isAllowed(const std::string &domain, const std::string &mechanism, const std::string &key);

    zmq::context_t m_context;
    zmq::socket_t m_keyQuestions; // ZeroMQ asks here about each client; the I/O thread's own
    const int m_wake;             // an eventfd
    std::atomic<bool> m_woken{false};
    Kelm::Mutex m_mutex;
    std::vector<Work> m_work SPECTREE_GUARDED_BY(m_mutex);
    std::vector<std::shared_ptr<ServerCore>> m_servers; // the I/O thread's own
    bool m_busy = false;                                // some server has more to read
    bool m_stop = false;                                // the I/O thread's own
    std::thread m_thread;
};

} // namespace sbs
