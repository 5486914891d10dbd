#pragma once

#include "platform/base/export.h"

#include <QString>

namespace values {

class ValueDescriptor;

/// The published descriptors by key, as far as a value needs them for its command strings.
/// Application thread.
class SPECTREE_EXPORT IValueDescriptorMap {
public:
    virtual ~IValueDescriptorMap() = default;
    /// Null when there is none.
    virtual const ValueDescriptor *Find(const QString &key) const = 0;
    /// The key under which \a descriptor was published.
    virtual QString KeyOf(const ValueDescriptor &descriptor) const = 0;

    /// The map of the process, not owned; null until one was set. Without it no key is known.
    static IValueDescriptorMap *Instance();
    static void SetInstance(IValueDescriptorMap *map);
};

} // namespace values
