#include "scanbuffer/scanbufferrepository.h"

#include "scanbuffer/datasourceqobject.h"

namespace sbs {

ScanBufferRepository &ScanBufferRepository::instance()
{
    // Never destroyed: a thread that still runs at exit may come here.
    static auto *const repository = new ScanBufferRepository;
    return *repository;
}

void ScanBufferRepository::addSource(const QString &guid, DataSourceQObject *source)
{
    const Kelm::MutexLocker locker(m_mutex);
    m_sources[guid] = source;
}

void ScanBufferRepository::removeSource(const QString &guid, DataSourceQObject *source)
{
    const Kelm::MutexLocker locker(m_mutex);
    const auto found = m_sources.find(guid);
    if (found != m_sources.end() && found->second == source)
        m_sources.erase(found);
}

DataSourceQObject *ScanBufferRepository::getSource(const QString &guid) const
{
    const Kelm::MutexLocker locker(m_mutex);
    const auto found = m_sources.find(guid);
    return found != m_sources.end() ? found->second : nullptr;
}

DataSourceQObject *ScanBufferRepository::getSourceByEndpoint(const QByteArray &endpoint) const
{
    const Kelm::MutexLocker lock(m_mutex);
    for (const auto &[guid, source] : m_sources)
        if (source->getServerEndpoint() == endpoint)
            return source;
    return nullptr;
}

} // namespace sbs
