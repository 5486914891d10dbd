#pragma once

#include "platform/transmission/server.h"
#include "scanbuffer/scanbufferdatasource.h"
#include "scanbuffer/scanbufferrepository.h"
#include "scanbuffer/window/windowfactories.h"
#include "scanbuffer/windowrelated.h"

#include <QUuid>

namespace sbs {

template <typename Y, typename YHandler>
ScanBufferDataSource<Y, YHandler>::ScanBufferDataSource()
    : m_guid(QUuid::createUuid().toString()), m_scanBuffer(ScanBuffer<Y, YHandler>::create()),
      m_windows([this](const QString &winGUID) { return makeWindow(winGUID); }),
      m_server(
          std::make_unique<Server>(std::make_unique<AdapterFactory<Y, YHandler>>(),
                                   std::make_unique<AdapterControllerFactory<Y, YHandler>>(*this)))
{
    ScanBufferRepository::instance().addSource(m_guid, this);
}

template <typename Y, typename YHandler>
ScanBufferDataSource<Y, YHandler>::~ScanBufferDataSource()
{
    ScanBufferRepository::instance().removeSource(m_guid, this);
}

template <typename Y, typename YHandler>
void ScanBufferDataSource<Y, YHandler>::SetGUID(const QString &guid)
{
    ScanBufferRepository::instance().removeSource(m_guid, this);
    m_guid = guid;
    ScanBufferRepository::instance().addSource(m_guid, this);
}

template <typename Y, typename YHandler>
void ScanBufferDataSource<Y, YHandler>::RemoveWindowRelated(const QString &winGUID)
{
    m_windows.remove(winGUID);
}

template <typename Y, typename YHandler>
WindowRelatedQObject *
ScanBufferDataSource<Y, YHandler>::CreateOrGetWindowRelated(const QString &winGUID)
{
    return m_windows.createOrGet(winGUID);
}

template <typename Y, typename YHandler>
QByteArray ScanBufferDataSource<Y, YHandler>::getServerEndpoint() const
{
    return m_server->getEndpoint();
}

/// What the window tells of adapters is passed on where it happens: an adapter may be gone before
/// a queued signal arrives.
template <typename Y, typename YHandler>
std::unique_ptr<WindowRelatedQObject>
ScanBufferDataSource<Y, YHandler>::makeWindow(const QString &winGUID)
{
    auto window = std::make_unique<WindowRelated<Y, YHandler>>(m_scanBuffer, winGUID,
                                                               m_scanBuffer->getSizeManager());
    window->listenTo(m_scanBuffer.get());
    connect(window.get(), &WindowRelatedQObject::signalAdapterCreated, this,
            &DataSourceQObject::signalAdapterCreated, Qt::DirectConnection);
    connect(window.get(), &WindowRelatedQObject::signalAdapterDeleted, this,
            &DataSourceQObject::signalAdapterDeleted, Qt::DirectConnection);
    connect(window.get(), &WindowRelatedQObject::signalRemoveWindowData, this,
            &DataSourceQObject::slotRemoveWindowData, Qt::QueuedConnection);
    return window;
}

} // namespace sbs
