#pragma once

#include "scanbuffer/datasourceadapter.h"
#include "scanbuffer/scanbuffer_connectorbases.h"
#include "valueclasses/samples/samplepairs.h"

namespace sbs {

/// Takes the y range of one dimension from a display, and tells the one that was fitted to the
/// data. docs/adapters.md has its messages.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBufferAdapter_YRange final : public ScanBufferAdapterBase_YRange,
                                                       public WindowAdapter<Y, YHandler> {
public:
    ScanBufferAdapter_YRange(WindowRelated<Y, YHandler> *window, const QByteArray &identity);

    void SetParameter(const MData &parameter) override;
    /// Tells the display, if \a dimension is the adapter's.
    void StartStopRecalculated(double start, double stop, short dimension) override;
    short GetDimension() const { return m_dimension; }

private:
    void setYRange(const MData &parameter);

    short m_dimension = 0;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT ScanBufferAdapter_YRange<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
