#pragma once

#include "platform/base/types.h"
#include "scanbuffer/messages/mdata.h"

/// Asks a static source to load an area of a waterfall again: from xStart to xStop in Hz, and from
/// tMin to tMax, the later one, in microseconds since 1970 UTC.
class SPECTREE_EXPORT MDataWaterfallArea final : public MData {
public:
    struct Area {
        double xStart = 0, xStop = 0;
        KRTimeStamp tMax = 0, tMin = 0;
        Kelm::Long scans = 0; ///< rows wanted
        Kelm::Long width = 0; ///< pixels
    };

    explicit MDataWaterfallArea(const Area &area, MDataType type = MDT_ReloadArea)
        : MData(type), m_area(area)
    {
    }
    explicit MDataWaterfallArea(const char **cursor);

    double XStart() const { return m_area.xStart; }
    double XStop() const { return m_area.xStop; }
    KRTimeStamp TMax() const { return m_area.tMax; }
    KRTimeStamp TMin() const { return m_area.tMin; }
    Kelm::Long Scans() const { return m_area.scans; }
    Kelm::Long Width() const { return m_area.width; }

protected:
    std::size_t payloadSize() const override { return 40; }
    char *writePayload(char *destination) const override;

private:
    Area m_area;
};

/// Asks for a histogram over a fixed area: x in Hz, t in microseconds since 1970 UTC, y in dB. Ends
/// travel as the display gives them; which of two is the greater is not laid down.
class SPECTREE_EXPORT MDataStaticHistogramWanted final : public MData {
public:
    struct Wanted {
        std::uint16_t id = 0;
        double x1 = 0, x2 = 0;
        KRTimeStamp t1 = 0, t2 = 0;
        std::uint16_t xTile = 0; ///< cells along x
        double y1 = 0, y2 = 0;
        std::uint16_t yTile = 0; ///< cells along y
    };

    explicit MDataStaticHistogramWanted(const Wanted &wanted)
        : MData(MDT_StaticHistogramWanted), m_wanted(wanted)
    {
    }
    explicit MDataStaticHistogramWanted(const char **cursor);

    std::uint16_t GetWantedId() const { return m_wanted.id; }
    double GetX1() const { return m_wanted.x1; }
    double GetX2() const { return m_wanted.x2; }
    KRTimeStamp GetT1() const { return m_wanted.t1; }
    KRTimeStamp GetT2() const { return m_wanted.t2; }
    std::uint16_t GetXTile() const { return m_wanted.xTile; }
    double GetY1() const { return m_wanted.y1; }
    double GetY2() const { return m_wanted.y2; }
    std::uint16_t GetYTile() const { return m_wanted.yTile; }

protected:
    std::size_t payloadSize() const override { return 54; }
    char *writePayload(char *destination) const override;

private:
    Wanted m_wanted;
};
