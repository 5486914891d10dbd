#pragma once

#include <cstdint>

/// What a scan buffer message is about: its first four bytes on the wire. docs/messages.md tells
/// what each carries. "To adapter" messages are commands of a display; "to consumer" messages are
/// what a display shows. Numbers that no adapter handles belong to the applications that use them.
enum MDataType : std::uint32_t {
    MDT_None = 0, ///< never sent
    MDT_ScansPerSecond = 1,
    MDT_Application2 = 2,
    MDT_CurvePixels = 3,
    MDT_WaterfallLines = 4,
    MDT_ChannelRangeDefinition = 5,
    MDT_HistogramXRange = 6,
    MDT_HistogramYRange = 7,
    MDT_AzimuthImage = 8,
    MDT_Frequency = 9, ///< x marker position, histogram frequency
    MDT_WindowVisible = 10,
    MDT_ThresholdLevel = 11,
    MDT_MeasureMode = 12,
    MDT_TimeLine = 13,
    MDT_XMarkerResult = 14, ///< MDataId: nothing there; with a sample: see MYData
    MDT_MaxHoldTime = 15,   ///< seconds
    MDT_MaxHoldRequest = 16,
    MDT_MaxHoldValues = 17,
    MDT_Application18 = 18,
    MDT_MaxCurveActive = 19,
    MDT_MinCurveActive = 20,
    MDT_MaxHoldSecondCurve = 21,
    MDT_MaxHoldFirstCurve = 22,
    MDT_StaticHistogramWanted = 23,
    MDT_Application24 = 24,
    MDT_ThresholdLine = 25,
    MDT_ReferenceLine = 26,
    MDT_Application27 = 27,
    MDT_ApplyReferenceLine = 28,
    MDT_ReloadArea = 29,
    MDT_Application30 = 30,
    MDT_ThresholdActive = 31,
    MDT_Dimension = 32,
    MDT_SecondDimension = 33,
    MDT_AzimuthParameter34 = 34, ///< reaches the histogram adapter too
    MDT_AzimuthParameter35 = 35,
    MDT_Application36 = 36,
    MDT_Traffic = 37, ///< bytes a second since the last report
    MDT_CompressionSettings = 38,
    MDT_CompressionChanged = 39,
    MDT_PixelMap = 40,
    MDT_XAxis = 41,
    MDT_Application42 = 42,
    MDT_FirstCurveVisible = 43,
    MDT_SecondCurveVisible = 44,
    MDT_XMarkerMoved = 45,
    MDT_XMarkerMove = 46,
    MDT_RecalculateYRange = 47,
    MDT_YRange = 48,
    MDT_WaterfallScansPerLine = 49,
    MDT_Application50 = 50,
    MDT_AzimuthParameter51 = 51,
    MDT_HistogramParameter52 = 52,
    MDT_AzimuthParameter53 = 53,
    MDT_HistogramParameter54 = 54,
    MDT_Application55 = 55,
    MDT_Application56 = 56,
    MDT_Application57 = 57,
    MDT_Application58 = 58,
    MDT_Application59 = 59,
    MDT_Application60 = 60,
    MDT_Application61 = 61,
    MDT_BearingSample = 62,
    MDT_MinMaxSample = 63,
    MDT_SecondMinMaxSample = 64,
    MDT_BearingExtendedSample = 65,
    MDT_PulseSample = 66,
    MDT_ThresholdActiveForLevel = 67,
    MDT_AzimuthPackage = 68,
    MDT_WindowMinimized = 69,
    MDT_XMarkerFlag = 70,
    MDT_Echo = 71, ///< sent straight back: a display measures the round trip with it
    MDT_ChannelRangeAcknowledged = 72,
    MDT_UseAxisCalculatorForWidget = 73,
    MDT_Container = 74,
    MDT_DFSpectrumSample = 75,
    MDT_AzimuthParameter76 = 76,
    MDT_NoiseFloorPixels = 77,
    MDT_Reserved = 78, ///< never sent
    MDT_Count = 79,    ///< the number of types, itself none
};
