#pragma once

#include "scanbuffer/datasourceadapter.h"
#include "scanbuffer/scanbuffer_connectorbases.h"
#include "valueclasses/samples/samplepairs.h"

namespace sbs {

/// Tells a display how many scans arrive in a second, how many share a row of the waterfall, and
/// the traffic of its window. docs/adapters.md has its messages.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBufferAdapter_Statistics final : public ScanBufferAdapterBase_Statistics,
                                                           public WindowAdapter<Y, YHandler> {
public:
    ScanBufferAdapter_Statistics(WindowRelated<Y, YHandler> *window, const QByteArray &identity);

    /// Sends the three; on the slowest timer of the window.
    void process() override;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT ScanBufferAdapter_Statistics<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
