#pragma once

#include "platform/base/types.h"
#include "scanbuffer/messages/mdata.h"

#include <QSize>

/// An image of directions over frequency. Packed on the wire, always; writing packs in place, once.
class SPECTREE_EXPORT MDataAzimuth final : public MData {
public:
    struct Head {
        std::uint32_t bytesPerLine = 0;
        KRTimeStamp youngest = 0;
        std::uint32_t width = 0, height = 0; ///< pixels
        std::uint8_t quality = 0;            ///< per cent
    };

    MDataAzimuth(std::string image, const Head &head)
        : MData(MDT_AzimuthImage), m_head(head), m_image(std::move(image))
    {
    }
    explicit MDataAzimuth(const char **cursor);

    /// The plain bytes; unpacks in place at the first call. Bytes that don't unpack are traced and
    /// read as empty; the message keeps them as they came.
    const std::string &GetString() const;
    /// Unpacks, and tells the number of image bytes.
    std::size_t byteCount() const { return GetString().size(); }
    KRTimeStamp GetYoungest() const { return m_head.youngest; }
    std::uint8_t quality() const { return m_head.quality; }
    std::uint32_t bytesPerLine() const { return m_head.bytesPerLine; }
    QSize size() const { return {int(m_head.width), int(m_head.height)}; }

protected:
    std::size_t payloadSize() const override;
    char *writePayload(char *destination) const override;

private:
    Head m_head;
    mutable std::string m_image;
    mutable bool m_packed = false;
};
