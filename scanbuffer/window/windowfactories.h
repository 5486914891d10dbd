#pragma once

#include "platform/transmission/adapterfactory.h"
#include "scanbuffer/idatasource.h"
#include "scanbuffer/window/windowrelatedqobject.h"
#include "valueclasses/samples/samplepairs.h"

namespace sbs {

/// Makes the adapters of one data source by the names of their kinds. A kind is one row of its
/// table; an unknown one gives none. Any thread.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT AdapterFactory : public IAdapterFactory {
public:
    /// The adapter has the type of its name, and no window until one registers it.
    std::shared_ptr<Adapter> create(const QByteArray &name,
                                    const QByteArray &identity) const override;
};

/// Gives the windows of a data source to its server. \a source must outlive it.
template <typename Y, typename YHandler>
class AdapterControllerFactory : public IAdapterControllerFactory {
public:
    explicit AdapterControllerFactory(IDataSource &source) : m_source(source) {}

    IAdapterController *create(const QString &windowGuid) const override
    {
        return m_source.CreateOrGetWindowRelated(windowGuid);
    }
    void release(const QString &windowGuid) const override
    {
        m_source.RemoveWindowRelated(windowGuid);
    }

private:
    IDataSource &m_source;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT AdapterFactory<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
