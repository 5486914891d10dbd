#pragma once

#include "platform/base/types.h"
#include "scanbuffer/messages/mdata.h"

#include <QSize>

#include <vector>

class QString;

/// Rows of colour bytes of a waterfall, the newest row first, with the time of each.
class SPECTREE_EXPORT MDataWaterfall final : public MData {
public:
    /// What stands beside the pixels.
    struct Head {
        std::uint32_t width = 0;          ///< pixels a row
        std::uint32_t lineCnt = 0;        ///< rows
        std::uint64_t youngestID = 0;     ///< line id of the newest row
        std::uint16_t compression = 1;    ///< 0: plain; any other: packed
        std::uint16_t packetId = 0;       ///< mark of a reload: 1000 the only block, 999 the last
        bool useForCurve = false;         ///< the display draws its curve from the newest row
        std::vector<KRTimeStamp> times{}; ///< one a row, the newest first
    };

    /// An empty block, to be filled by assign().
    MDataWaterfall() : MData(MDT_WaterfallLines) {}
    /// Packs the pixels when the head's compression is not 0.
    /// \throws KRException when the head has not one time a row
    MDataWaterfall(const char *pixels, std::size_t size, Head head);
    explicit MDataWaterfall(const char **cursor);
    /// Replaces the whole message and keeps its memory: a row a scan takes no allocation.
    void assign(const char *pixels, std::size_t size, const Head &head);

    /// The plain bytes, row by row; unpacks in place at the first call and sets CompressionLevel to
    /// 0. Bytes that don't unpack are traced and read as empty. Nothing says that they are as many
    /// as the rows hold.
    const std::string &GetString() const;
    const std::vector<KRTimeStamp> &GetTime() const { return m_head.times; }
    /// The first entry of GetTime, 0 without one.
    KRTimeStamp GetYoungest() const { return m_head.times.empty() ? 0 : m_head.times.front(); }
    std::uint64_t GetYoungestID() const { return m_head.youngestID; }
    std::uint16_t CompressionLevel() const { return m_head.compression; }
    std::uint32_t GetLineCnt() const { return m_head.lineCnt; }
    std::uint16_t PacketId() const { return m_head.packetId; }
    bool UseForCurve() const { return m_head.useForCurve; }
    /// Width and rows.
    QSize size() const { return {int(m_head.width), int(m_head.lineCnt)}; }

    /// Traces \a text with rows and packet id, for a message of a reload only.
    void Trace(const QString &text) const;

protected:
    std::size_t payloadSize() const override;
    char *writePayload(char *destination) const override;

private:
    mutable Head m_head;
    mutable std::string m_data;
};
