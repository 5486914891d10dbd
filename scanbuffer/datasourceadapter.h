#pragma once

#include "platform/transmission/adapter.h"
#include "scanbuffer/idatasourceadapter.h"

namespace sbs {
class WindowRelatedQObject;
template <typename Y, typename YHandler>
class WindowRelated;
} // namespace sbs

/// Base of all adapters: the producing end of one kind of data of one display window.
///
/// Ownership: a display's request makes an adapter, and its window owns it, so the window outlives
/// it. Threads: all operations run on the thread of the window, destruction included.
class SPECTREE_EXPORT DataSourceAdapter : public sbs::Adapter, public sbs::IDataSourceAdapter {
public:
    /// \a identity is what the transmission layer knows the adapter by.
    DataSourceAdapter(Adapter_Type type, sbs::WindowRelatedQObject *window,
                      const QByteArray &identity);

    /// Parses a command of the display and hands it to SetParameter. One that doesn't parse, or
    /// that fails, is traced and dropped; nothing is thrown.
    void slotCommand(QByteArray command) override;

    Adapter_Type GetType() const override { return m_type; }
    void SetType(Adapter_Type type) override { m_type = type; }

protected:
    /// Null before the adapter is registered.
    sbs::WindowRelatedQObject *windowObject() const { return m_window; }
    void setWindowObject(sbs::WindowRelatedQObject *window) { m_window = window; }
    /// Sends the axis of the window as the whole state; nothing without a window.
    void sendAxisAsFullState();

private:
    Adapter_Type m_type;
    sbs::WindowRelatedQObject *m_window;
};

namespace sbs {

/// An adapter of the windows of one sample pair.
template <typename Y, typename YHandler>
class WindowAdapter : public DataSourceAdapter {
public:
    /// The window that registers the adapter calls it.
    void SetWindow(WindowRelated<Y, YHandler> *window);

protected:
    WindowAdapter(Adapter_Type type, WindowRelated<Y, YHandler> *window, const QByteArray &identity)
        : DataSourceAdapter(type, nullptr, identity)
    {
        SetWindow(window);
    }
    WindowRelated<Y, YHandler> *window() const;
};

} // namespace sbs
