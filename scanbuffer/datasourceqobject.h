#pragma once

#include "platform/base/export.h"
#include "scanbuffer/idatasourceadapter.h"

#include <QByteArray>
#include <QObject>
#include <QString>

namespace sbs {

/// The signals of a data source, and the slot by which a window asks to be removed.
class SPECTREE_EXPORT DataSourceQObject : public QObject {
    Q_OBJECT

public:
    DataSourceQObject();
    ~DataSourceQObject() override;

    /// Where consumers connect to.
    virtual QByteArray getServerEndpoint() const = 0;

public Q_SLOTS:
    virtual void slotRemoveWindowData(QString winGUID) = 0;

Q_SIGNALS:
    /// What a window tells of its adapters, on the window's thread.
    void signalAdapterCreated(sbs::IDataSourceAdapter *adapter);
    void signalAdapterDeleted(QString adapter);
};

} // namespace sbs
