#pragma once

#include "platform/base/export.h"
#include "scanbuffer/compressiondetails.h"

#include <QObject>

namespace sbs {

/// Holds the compression settings of one window, on its worker thread.
class SPECTREE_EXPORT CompressionHandler : public QObject {
    Q_OBJECT

public:
    CompressionHandler();
    ~CompressionHandler() override;

    CompressionDetails &details() { return m_details; }
    const CompressionDetails &details() const { return m_details; }

Q_SIGNALS:
    /// The steps changed; true when the compression rose.
    void signalCompressionChanged(bool raised);

private:
    CompressionDetails m_details;
};

} // namespace sbs
