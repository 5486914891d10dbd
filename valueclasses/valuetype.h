#pragma once

namespace values {

/// The type number of a value. It travels between processes and never changes; the work that builds
/// a class adds its number here. Several classes may share one.
enum ValueType : int {
    VTYPE_None = 0,

    VTYPE_ValueEmpty = VTYPE_None,
    VTYPE_ValueBoolean = 1,
    VTYPE_ValueInt = 2,
    VTYPE_ValueInt64 = 3,
    VTYPE_ValueFloat = 4,
    VTYPE_ValueString = 5,
    VTYPE_ValueNumericInt = 6,
    VTYPE_ValueNumericInt64 = 7,
    VTYPE_ValueNumericFloat = 8,
    VTYPE_ValueStreamInt = 17,
    VTYPE_ValueStreamFloat = 18,
    VTYPE_ValueStreamDouble = 18,
    VTYPE_ValueBuffer = 19,
    VTYPE_ValueCString = 27,
    VTYPE_ValueUInt = 29,
    VTYPE_ValueChar = 45,
    VTYPE_ValueUChar = 78,
    VTYPE_ValueInt16 = 79,
    VTYPE_ValueWString = 80,
    VTYPE_ValueNumericFloatWithOffset = 104,

    VTYPE_ValueSelection = 9,
    VTYPE_StringMultiSelection = 68,
    VTYPE_StringExclusiveSelection = 69,
    VTYPE_StringDoubleMultiSelection = 70,
    VTYPE_StringDoubleExclusiveSelection = 71,

    VTYPE_ValueMapChar = 10,
    VTYPE_ValueMapShort = 11,
    VTYPE_ValueMapLong = 12,
    VTYPE_ValueMapFloat = 13,
    VTYPE_ValueMapDouble = 14,
    VTYPE_ValueMapBearing = 15,
    VTYPE_ValueMapLevel = 16,
    VTYPE_ValueMapPercent = 30,
    VTYPE_ValueMapMinMax = 31,
    VTYPE_ValueMapElevOverAzi = 53,
    VTYPE_ValueMapBearingExtended = 76,
    VTYPE_ValueMapPulse = 105,
    VTYPE_ValueMapDFSpectrumSample = 127,

    VTYPE_FastValueMapChar = 33,
    VTYPE_FastValueMapShort = 34,
    VTYPE_FastValueMapLong = 35,
    VTYPE_FastValueMapFloat = 36,
    VTYPE_FastValueMapDouble = 37,
    VTYPE_FastValueMapBearing = 38,
    VTYPE_FastValueMapLevel = 39,
    VTYPE_FastValueMapPercent = 40,
    VTYPE_FastValueMapMinMax = 59,
    VTYPE_FastValueMapBearingExtended = 77,
    VTYPE_FastValueMapElevOverAzi = 90,
    VTYPE_FastValueMapPulse = 105,
    VTYPE_FastValueMapDFSpectrumSample = 126,

    VTYPE_Unknown = 133,
};

} // namespace values
