#include "scanbuffer/window/scanspersecondrouter.h"

#include "scanbuffer/window/windowrelatedqobject.h"

namespace sbs {

ScansPerSecondRouter::ScansPerSecondRouter(const WindowRelatedQObject &window,
                                           IScansPerSecondReceiver &receiver, QObject *parent)
    : QObject(parent), m_receiver(receiver)
{
    connect(&window, &WindowRelatedQObject::signalScansPerSecond, this,
            [this](double scansPerSecond) { m_receiver.SetScansPerSecond(scansPerSecond); });
}

ScansPerSecondRouter::~ScansPerSecondRouter() = default;

} // namespace sbs
