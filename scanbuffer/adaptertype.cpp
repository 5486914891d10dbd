#include "scanbuffer/adaptertype.h"

#include <algorithm>
#include <iterator>

namespace sbs {
namespace {

constexpr AdapterName kNames[] = {
    {AdapterType_Statistics, "Statistics"},
    {AdapterType_Curve, "Curve"},
    {AdapterType_XAxis, "XAxis"},
    {AdapterType_Waterfall, "Waterfall"},
    {AdapterType_Azimuth, "Azimuth"},
    {AdapterType_Elevation, "Elevation"},
    {AdapterType_XMarker, "XMarker"},
    {AdapterType_Threshold, "Threshold"},
    {AdapterType_MaxHold, "MaxHold"},
    {AdapterType_StaticSource, "StaticSource"},
    {AdapterType_KFactor, "KFactor"},
    {AdapterType_RefLine, "RefLine"},
    {AdapterType_Sparkles, "Sparkles"},
    {AdapterType_HistogramAz, "HistogramAz"},
    {AdapterType_HistogramEl, "HistogramEl"},
    {AdapterType_Compression, "Compression"},
    {AdapterType_YRange, "YRange"},
    {AdapterType_YRange2, "YRange2"},
    {AdapterType_YRangeA, "YRangeA"},
    {AdapterType_YRangeE, "YRangeE"},
    {AdapterType_IndexLine, "IndexLine"},
    {AdapterType_NoiseFloor, "NoiseFloor"},
};

} // namespace

std::span<const AdapterName> adapterNames() { return kNames; }

QByteArray adapterName(Adapter_Type type)
{
    const auto found = std::ranges::find(kNames, type, &AdapterName::type);
    return found == std::end(kNames) ? QByteArray() : QByteArray(found->name);
}

Adapter_Type adapterType(const QByteArray &name)
{
    const auto found =
        std::ranges::find_if(kNames, [&](const AdapterName &row) { return name == row.name; });
    return found == std::end(kNames) ? AdapterType_None : found->type;
}

} // namespace sbs
