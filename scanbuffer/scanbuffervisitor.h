#pragma once

#include "scanbuffer/scanbufferaccess.h"

namespace sbs {

/// A reader of a scan buffer.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBufferVisitor {
public:
    virtual ~ScanBufferVisitor() = default;
    /// Called by ScanBuffer::accept() on the thread of its caller, under the read lock: the writer
    /// waits meanwhile, so copy and leave. Don't change the buffer from here.
    virtual void visit(const ScanBufferAccess<Y, YHandler> &access) = 0;
};

} // namespace sbs
