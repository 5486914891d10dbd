#pragma once

#include "scanbuffer/datasourceadapter.h"
#include "valueclasses/samples/samplepairs.h"

#include <vector>

namespace sbs {

/// Sends the newest scan of a window as a curve: one value a pixel, of one dimension or two.
/// docs/adapters.md has its messages.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBufferAdapter_ScanLine final : public WindowAdapter<Y, YHandler> {
public:
    ScanBufferAdapter_ScanLine(WindowRelated<Y, YHandler> *window, const QByteArray &identity);

    using IDataSourceAdapter::process;
    /// Sends the first of \a lines, which come newest first. With \a relative, dimension 0 counts
    /// from the reference line. Does nothing without a window or lines, or while not visible.
    void process(const std::vector<int> &lines, int pixels, bool relative);
    void SetParameter(const MData &parameter) override;
    void slotRequestFullStateUpdate() override { this->sendAxisAsFullState(); }

    short GetDimension() const { return m_first.dimension; }
    bool Get2ndCurveVisible() const { return m_second.visible; }

private:
    struct Curve {
        short dimension = 0;
        bool visible = true;
    };

    void send(const Curve &curve, short number, const std::vector<Y> &line, int pixels,
              bool relative);

    Curve m_first, m_second{0, false};
    bool m_visible = true;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT ScanBufferAdapter_ScanLine<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
