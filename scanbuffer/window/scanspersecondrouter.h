#pragma once

#include "platform/base/export.h"

#include <QObject>

namespace sbs {

class IScansPerSecondReceiver;
class WindowRelatedQObject;

/// Hands the scan rates of a window on to an adapter that wants to know them.
///
/// Threads: made on the adapter's thread, where the receiver is called.
/// Ownership: belongs to \a parent, which is to go with the receiver; the window may go before.
class SPECTREE_EXPORT ScansPerSecondRouter : public QObject {
    Q_OBJECT

public:
    ScansPerSecondRouter(const WindowRelatedQObject &window, IScansPerSecondReceiver &receiver,
                         QObject *parent);
    ~ScansPerSecondRouter() override;

private:
    IScansPerSecondReceiver &m_receiver;
};

} // namespace sbs
