#pragma once

#include "platform/base/export.h"

#include <QString>

namespace values {

/// A log of value changes, as whoever starts one needs it. Application thread.
class SPECTREE_EXPORT ILogVTData {
public:
    virtual ~ILogVTData() = default;
    /// Takes over what the file says to watch and to write. False, with the reason traced, when the
    /// file can't be read whole.
    virtual bool LoadFromFile(QString name) = 0;
    /// Writes one line of what the values hold now.
    virtual void toLogger() = 0;
    /// Begins to watch. True when every value was found.
    virtual bool connect() = 0;
};

} // namespace values
