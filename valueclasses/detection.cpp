#include "valueclasses/detection.h"

#include "platform/base/errorhandler.h"
#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::DetectionConventional, values::FormatDetectionConventional,
                       .name = "DetectionConventional")

namespace values {

std::string DetectionConventional::ToStream() const
{
    constexpr std::size_t kImageSize = 48;
    std::string image = Kelm::toStandardString(*this);
    const bool bTest = image.size() == kImageSize;
    _Q_assert(bTest, "bTest", "valueclasses/detection", __LINE__);
    return image;
}

DetectionConventional DetectionConventional::FromStream(const char **cursor)
{
    return Kelm::fromCharStream<DetectionConventional>(cursor);
}

std::string FormatDetectionConventional::toStandardString(const DetectionConventional &record)
{
    return record.ToStream() + ';';
}

bool FormatDetectionConventional::fromCharStream(const char **cursor, DetectionConventional &record)
{
    return Record::readItem(cursor, record);
}

} // namespace values
