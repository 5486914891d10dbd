#pragma once

#include "platform/base/export.h"

#include <QString>

#include <memory>

namespace sbs {

class WindowRelatedQObject;

/// The server end of the scan buffer service for one spectral value: a scan buffer, a transport
/// server, and one window for each display window of a client.
class SPECTREE_EXPORT IDataSource {
public:
    /// Ends all windows and waits for their threads.
    virtual ~IDataSource();
    virtual QString GetGUID() const = 0;
    /// Enters the repository under another GUID.
    virtual void SetGUID(const QString &guid) = 0;
    /// Ends a window, without waiting for its thread; an unknown one is only traced. Any thread.
    virtual void RemoveWindowRelated(const QString &winGUID) = 0;
    /// The window of a GUID, made on first use with a thread of its own. Any thread.
    virtual WindowRelatedQObject *CreateOrGetWindowRelated(const QString &winGUID) = 0;

    /// A data source by the type id of a spectral value; null for an id without one. 111 is
    /// `DFSpectrumSample` and 112 is `Pulse`, although their handlers have it the other way round;
    /// whoever knows the sample type makes a ScanBufferDataSource of it directly.
    /// \throws KRException when the server can't listen.
    static std::unique_ptr<IDataSource> Create(int valueType);
};

} // namespace sbs
