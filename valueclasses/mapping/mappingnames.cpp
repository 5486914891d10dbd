#include "valueclasses/mapping/mappingnames_p.h"

#include <cstddef>

namespace values {

namespace {

// By handler id, from 100 on. The name of the fast pulse map breaks the series and stays.
constexpr MappingNames kNames[] = {
    {100, VTYPE_ValueMapChar, VTYPE_FastValueMapChar, "ValueMappingChar", "FastValueMapChar"},
    {101, VTYPE_ValueMapShort, VTYPE_FastValueMapShort, "ValueMappingShort", "FastValueMapShort"},
    {102, VTYPE_ValueMapLevel, VTYPE_FastValueMapLevel, "ValueMappingLevel", "FastValueMapLevel"},
    {103, VTYPE_ValueMapLong, VTYPE_FastValueMapLong, "ValueMappingLong", "FastValueMapLong"},
    {104, VTYPE_ValueMapFloat, VTYPE_FastValueMapFloat, "ValueMappingFloat", "FastValueMapFloat"},
    {105, VTYPE_ValueMapPercent, VTYPE_FastValueMapPercent, "ValueMappingPercent",
     "FastValueMapPercent"},
    {106, VTYPE_ValueMapDouble, VTYPE_FastValueMapDouble, "ValueMapping", "FastValueMapDouble"},
    {107, VTYPE_ValueMapBearing, VTYPE_FastValueMapBearing, "ValueMappingQDF0xA",
     "FastValueMapQDF0xA"},
    {108, VTYPE_ValueMapMinMax, VTYPE_FastValueMapMinMax, "ValueMappingMinMax",
     "FastValueMapMinMax"},
    {109, VTYPE_ValueMapElevOverAzi, VTYPE_FastValueMapElevOverAzi, "ValueMappingElevOverAzi",
     "FastValueMapElevOverAzi"},
    {110, VTYPE_ValueMapBearingExtended, VTYPE_FastValueMapBearingExtended,
     "ValueMapBearingExtended", "FastValueMapBearingExtended"},
    {111, VTYPE_ValueMapPulse, VTYPE_FastValueMapPulse, "ValueMappingPulse", "PulseMapping"},
    {112, VTYPE_ValueMapDFSpectrumSample, VTYPE_FastValueMapDFSpectrumSample,
     "ValueMapDFSpectrumSample", "FastValueMapDFSpectrumSample"},
};
constexpr int kFirstHandlerId = 100;

constexpr bool areInOrder()
{
    int expected = kFirstHandlerId;
    for (const MappingNames &names : kNames)
        if (names.handlerId != expected++)
            return false;
    return true;
}
static_assert(areInOrder(), "mappingNames() finds a row by its place");

} // namespace

const MappingNames &mappingNames(int handlerId)
{
    return kNames[std::size_t(handlerId - kFirstHandlerId)];
}

} // namespace values
