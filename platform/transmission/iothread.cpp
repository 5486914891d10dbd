#include "platform/base/krexception.h"
#include "platform/transmission/iothread_p.h"
#include "platform/transmission/servercore_p.h"
#include "platform/transmission/socketcalls_p.h"

#include <algorithm>
#include <cerrno>
#include <future>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace sbs {
namespace {

constexpr char kKeyQuestions[] = "inproc://zeromq.zap.01";

int makeEventFd()
{
    const int fd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (fd < 0)
        throw KRException(QStringLiteral("The system gives the server no event descriptor."),
                          __FILE__, "IoThread", "IoThread", __LINE__);
    return fd;
}

} // namespace

std::shared_ptr<IoThread> IoThread::shared()
{
    static Kelm::Mutex mutex;
    // Never destroyed: a thread that still runs at exit may come here.
    static auto &running = *new std::weak_ptr<IoThread>; // guarded by mutex
    const Kelm::MutexLocker lock(mutex);
    std::shared_ptr<IoThread> thread = running.lock();
    if (!thread) {
        thread = std::make_shared<IoThread>();
        running = thread;
    }
    return thread;
}

IoThread::IoThread() : m_keyQuestions(m_context, zmq::socket_type::rep), m_wake(makeEventFd())
{
    m_keyQuestions.set(zmq::sockopt::linger, 0);
    m_keyQuestions.bind(kKeyQuestions);
    m_thread = std::thread([this] { run(); });
}

IoThread::~IoThread()
{
    {
        const Kelm::MutexLocker lock(m_mutex);
        m_work.push_back([this] { m_stop = true; });
    }
    wake();
    m_thread.join();
    close(m_wake);
    m_keyQuestions.close();
}

void IoThread::add(std::shared_ptr<ServerCore> server)
{
    execute([this, &server] { m_servers.push_back(std::move(server)); });
}

void IoThread::remove(const std::shared_ptr<ServerCore> &server)
{
    execute([this, &server] {
        server->shutDown();
        std::erase(m_servers, server);
    });
}

void IoThread::execute(Work work)
{
    std::promise<void> done;
    {
        const Kelm::MutexLocker lock(m_mutex);
        m_work.push_back([&work, &done] {
            work();
            Kelm::syncRelease(&done);
            done.set_value();
        });
    }
    wake();
    done.get_future().wait();
    Kelm::syncAcquire(&done);
}

void IoThread::wake()
{
    if (m_woken.exchange(true))
        return;
    const std::uint64_t one = 1;
    // Only a full counter can fail, and that wakes as well.
    [[maybe_unused]] const auto written = write(m_wake, &one, sizeof one);
}

void IoThread::run()
{
    while (!m_stop) {
        waitForEvents(m_busy ? 0 : timeout());
        runWork();
        answerKeyQuestions();
        m_busy = false;
        for (const auto &server : m_servers)
            m_busy = server->service() || m_busy;
    }
}

int IoThread::timeout()
{
    int least = -1;
    for (const auto &server : m_servers)
        if (const int wanted = server->tickInterval(); wanted >= 0)
            least = least < 0 ? wanted : std::min(least, wanted);
    return least;
}

void IoThread::waitForEvents(int milliseconds)
{
    std::vector<pollfd> waits{{m_wake, POLLIN, 0},
                              {m_keyQuestions.get(zmq::sockopt::fd), POLLIN, 0}};
    for (const auto &server : m_servers)
        waits.push_back({server->descriptor(), POLLIN, 0});
    poll(waits.data(), nfds_t(waits.size()), milliseconds);
    // Clear the flag before reading what was announced: a wake in between announces anew.
    std::uint64_t count = 0;
    [[maybe_unused]] const auto got = read(m_wake, &count, sizeof count);
    m_woken.store(false);
}

void IoThread::runWork()
{
    std::vector<Work> work;
    {
        const Kelm::MutexLocker lock(m_mutex);
        work.swap(m_work);
    }
    for (const Work &one : work)
        one();
}

void IoThread::answerKeyQuestions()
{
    // version, request id, domain, address, identity, mechanism, key
    constexpr std::size_t kRequestId = 1, kDomain = 2, kMechanism = 5, kKey = 6;
    std::vector<zmq::message_t> question;
    try {
        while (receiveParts(m_keyQuestions, question)) {
            question.resize(kKey + 1);
            const bool allowed =
                isAllowed(question[kDomain].to_string(), question[kMechanism].to_string(),
                          question[kKey].to_string());
            const std::string answer[] = {"1.0",
                                          question[kRequestId].to_string(),
                                          allowed ? "200" : "400",
                                          allowed ? "OK" : "The client's key is not in the list",
                                          "",
                                          ""};
            for (std::size_t i = 0; i < std::size(answer); ++i)
                uninterrupted([&] {
                    return m_keyQuestions.send(zmq::buffer(answer[i]),
                                               i + 1 < std::size(answer) ? zmq::send_flags::sndmore
                                                                         : zmq::send_flags::none);
                });
        }
    } catch (const zmq::error_t &) {
        // The asker has gone; ZeroMQ refuses a client that gets no answer.
    }
}

bool IoThread::isAllowed(const std::string &domain, const std::string &mechanism,
                         const std::string &key)
{
    const auto server = std::ranges::find_if(
        m_servers, [&](const auto &candidate) { return candidate->domain() == domain; });
    return server != m_servers.end() && mechanism == "CURVE" && (*server)->allows(key);
}

} // namespace sbs
