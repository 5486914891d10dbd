#pragma once

#include "scanbuffer/datasourceadapter.h"
#include "valueclasses/samples/samplepairs.h"

namespace sbs {

/// Tells a display the axis and the channels of its window, and takes the axis that the display
/// wants. docs/adapters.md has its messages.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBufferAdapter_XRange final : public WindowAdapter<Y, YHandler> {
public:
    ScanBufferAdapter_XRange(WindowRelated<Y, YHandler> *window, const QByteArray &identity);

    void SetParameter(const MData &parameter) override;
    void slotRequestFullStateUpdate() override;
    /// Sends the channels of the window under a new id.
    void SendChannelRangeDefinition();
    /// True when the display has acknowledged the channels that were sent last.
    bool IsAcknowledged() const { return m_acknowledgedId == m_sentId; }

private:
    int m_sentId = 0, m_acknowledgedId = 0;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT ScanBufferAdapter_XRange<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
