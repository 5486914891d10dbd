#include "scanbuffer/messages/mdatarequests.h"

#include "platform/base/bytes.h"

namespace {

template <typename... Fields>
void readAll(const char **cursor, Fields &...fields)
{
    ((fields = Kelm::readLittleEndian<Fields>(cursor)), ...);
}

template <typename... Fields>
char *writeAll(char *destination, const Fields &...fields)
{
    ((destination = Kelm::putLittleEndian(destination, fields)), ...);
    return destination;
}

} // namespace

MDataWaterfallArea::MDataWaterfallArea(const char **cursor) : MData(MDT_ReloadArea)
{
    readAll(cursor, m_area.xStart, m_area.xStop, m_area.tMax, m_area.tMin, m_area.scans,
            m_area.width);
}

char *MDataWaterfallArea::writePayload(char *destination) const
{
    return writeAll(destination, m_area.xStart, m_area.xStop, m_area.tMax, m_area.tMin,
                    m_area.scans, m_area.width);
}

MDataStaticHistogramWanted::MDataStaticHistogramWanted(const char **cursor)
    : MData(MDT_StaticHistogramWanted)
{
    Wanted &w = m_wanted;
    readAll(cursor, w.id, w.x1, w.x2, w.t1, w.t2, w.xTile, w.y1, w.y2, w.yTile);
}

char *MDataStaticHistogramWanted::writePayload(char *destination) const
{
    const Wanted &w = m_wanted;
    return writeAll(destination, w.id, w.x1, w.x2, w.t1, w.t2, w.xTile, w.y1, w.y2, w.yTile);
}
