#pragma once

#include "platform/base/instancecounter.h"
#include "scanbuffer/datasourceqobject.h"
#include "scanbuffer/idatasource.h"
#include "scanbuffer/scanbuffer.h"
#include "scanbuffer/window/windowkeeper.h"

#include <QByteArray>

namespace sbs {

class Server;

/// The sample pairs that have a data source, under the type id of their spectral value: X(id, Y,
/// Handler).
#define SPECTREE_FOR_EACH_DATA_SOURCE(X)                                                           \
    X(100, char, ::values::charHandler)                                                            \
    X(101, short, ::values::shortHandler)                                                          \
    X(102, short, ::values::levelHandler)                                                          \
    X(103, ::Kelm::Long, ::values::longHandler)                                                    \
    X(104, float, ::values::floatHandler)                                                          \
    X(105, float, ::values::floatPercentHandler)                                                   \
    X(106, double, ::values::doubleHandler)                                                        \
    X(107, ::values::Bearing, ::values::BearingHandler)                                            \
    X(108, ::values::MinMax, ::values::MinMaxHandler)                                              \
    X(110, ::values::BearingExtended, ::values::BearingExtendedHandler)                            \
    X(111, ::values::DFSpectrumSample, ::values::DFSpectrumSampleHandler)                          \
    X(112, ::values::Pulse, ::values::PulseHandler)

/// The data source of one sample type.
///
/// It makes its own GUID and stands in the ScanBufferRepository for as long as it lives. The server
/// listens where the configuration key "ScanBufferServerEndpoint" says, "tcp://*:*" by default: all
/// addresses, on a free port.
///
/// Threads: made and destroyed on one thread, the application thread as a rule. The transport's
/// thread asks for windows, each window has a worker thread of its own.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBufferDataSource
    : public DataSourceQObject,
      public IDataSource,
      private Kelm::Counted<ScanBufferDataSource<Y, YHandler>> {
public:
    static constexpr const char *kInstanceName = "sbs::ScanBufferDataSource";

    /// \throws KRException when the server can't listen; nothing is left behind then.
    ScanBufferDataSource();
    ~ScanBufferDataSource() override;

    QString GetGUID() const override { return m_guid; }
    void SetGUID(const QString &guid) override;
    void RemoveWindowRelated(const QString &winGUID) override;
    WindowRelatedQObject *CreateOrGetWindowRelated(const QString &winGUID) override;

    QByteArray getServerEndpoint() const override;
    std::shared_ptr<ScanBuffer<Y, YHandler>> GetScanBuffer() const { return m_scanBuffer; }

    void slotRemoveWindowData(QString winGUID) override { RemoveWindowRelated(winGUID); }

private:
    std::unique_ptr<WindowRelatedQObject> makeWindow(const QString &winGUID);

    QString m_guid;
    std::shared_ptr<ScanBuffer<Y, YHandler>> m_scanBuffer;
    WindowKeeper m_windows;
    std::unique_ptr<Server> m_server; // goes first: its adapters belong to the windows
};

#define SPECTREE_DECLARE(id, Y, Handler)                                                           \
    extern template class SPECTREE_EXPORT ScanBufferDataSource<Y, Handler>;
SPECTREE_FOR_EACH_DATA_SOURCE(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
