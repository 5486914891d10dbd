#include "platform/base/objecttimer.h"

#include "platform/base/errorhandler.h"

#include <QObject>
#include <QTimerEvent>

#include <vector>

namespace Kelm {
namespace {

class QtObjectTimer final : public QObject, public ObjectTimer {
public:
    explicit QtObjectTimer(IHasTimerCallback *target) : m_target(target) {}

    int StartTimer(int milliseconds) override
    {
        const int id = startTimer(milliseconds);
        if (id != 0)
            m_ids.push_back(id);
        return id;
    }

    void KillTimers() override
    {
        for (int id : m_ids)
            killTimer(id);
        m_ids.clear();
    }

private:
    // Nothing may pass through the event loop: it would end the process.
    void timerEvent(QTimerEvent *event) override
    {
        try {
            m_target->OnTimer(event->timerId());
        } catch (const std::exception &error) {
            SPECTREE_TRACE(TraceWarnings, QString::fromUtf8(error.what()));
        }
    }

    IHasTimerCallback *m_target;
    std::vector<int> m_ids;
};

} // namespace

std::unique_ptr<ObjectTimer> ObjectTimer::create(IHasTimerCallback *target)
{
    return std::make_unique<QtObjectTimer>(target);
}

} // namespace Kelm
