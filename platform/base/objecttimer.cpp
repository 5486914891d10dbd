#include "platform/base/objecttimer.h"

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
    void timerEvent(QTimerEvent *event) override { m_target->OnTimer(event->timerId()); }

    IHasTimerCallback *m_target;
    std::vector<int> m_ids;
};

} // namespace

std::unique_ptr<ObjectTimer> ObjectTimer::create(IHasTimerCallback *target)
{
    return std::make_unique<QtObjectTimer>(target);
}

} // namespace Kelm
