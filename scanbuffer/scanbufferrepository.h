#pragma once

#include "platform/base/export.h"
#include "platform/base/sync.h"

#include <QByteArray>
#include <QString>

#include <map>

namespace sbs {

class DataSourceQObject;

/// All data sources of the process by GUID. Any thread. It owns none: a source enters and leaves by
/// itself.
class SPECTREE_EXPORT ScanBufferRepository {
public:
    static ScanBufferRepository &instance();

    /// A source that is there under the same GUID is replaced.
    void addSource(const QString &guid, DataSourceQObject *source);
    /// Does nothing when another source stands under that GUID.
    void removeSource(const QString &guid, DataSourceQObject *source);
    /// Null for an unknown GUID. The source may go at any time but on its own thread.
    DataSourceQObject *getSource(const QString &guid) const;
    /// The source that serves \a endpoint, as its value's real-time buffer name tells it; or null.
    DataSourceQObject *getSourceByEndpoint(const QByteArray &endpoint) const;

private:
    mutable Kelm::Mutex m_mutex;
    std::map<QString, DataSourceQObject *> m_sources SPECTREE_GUARDED_BY(m_mutex);
};

} // namespace sbs
