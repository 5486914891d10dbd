#pragma once

#include "valueclasses/records/extendeddetection.h"

class QIcon;

namespace values {

/// The columns of a detection in a list, with a gap where other kinds of lists have theirs.
enum DetectionColumn : int {
    ColumnFrequency = 0,
    ColumnBandwidth = 1,
    ColumnName = 4,
    ColumnFrequencyAgain = 6, ///< beside others in one cell
    ColumnLevel = 10,
    ColumnStartTime = 18,
    ColumnStopTime = 19,
    ColumnClassifierFrequency = 20,
    ColumnClassifierBandwidth = 21,
    ColumnConfidence = 22,
    ColumnModulation = 23,
    ColumnPrimaryModulation = 24,
    ColumnToneCount = 25,
    ColumnTransmissionSystem = 26,
    ColumnBaudRate = 28,
    ColumnShift = 29,
    ColumnBlockLength = 30,
    ColumnCycleTime = 31,
    ColumnChannels = 32,
    ColumnDecoder = 33,
    ColumnAzimuth = 34,
    ColumnQuality = 35,
    ColumnLocation = 36,
};

/// The texts of a detection's columns. What isn't known, and every other column, is empty; the
/// global formatter words frequency and bandwidth. Times are UTC.
class SPECTREE_EXPORT DetectionConventionalAdapter {
public:
    static QString GetText4Column(int column, const DetectionConventional &item);
    /// There are none.
    static QIcon GetIcon4Column(int column, const DetectionConventional &item);
};

/// The same with the findings of direction finder and classifier.
class SPECTREE_EXPORT ExtendedDetConAdapter {
public:
    static QString GetText4Column(int column, const ExtendedDetectionConventional &item);
    /// At most \a length characters of it, all for -1.
    static QString GetColumnText(const ExtendedDetectionConventional &item, int column, int length);
    static QIcon GetIcon4Column(int column, const ExtendedDetectionConventional &item);

    // The texts of single findings; a number that isn't above 0 is empty.
    using Item = ExtendedDetectionConventional;
    static QString GetFreqString(const Item &item);     ///< "145500.000 kHz"
    static QString GetFreqStringVUHF(const Item &item); ///< "145.500000 MHz"
    static QString GetBWString(const Item &item);
    static QString GetConfidenceString(const Item &item); ///< "90 %"
    static QString GetModulationString(const Item &item);
    static QString GetPrimModString(const Item &item);
    /// From 30 MHz on the classifier tells the number of tones in place of the cycle time.
    static QString GetToneCountString(const Item &item);
    static QString GetTransmissionSystemString(const Item &item);
    static QString GetBaudString(const Item &item);  ///< "50 Bd"
    static QString GetShiftString(const Item &item); ///< "170 Hz"
    static QString GetBlockString(const Item &item); ///< "1.5 s"
    static QString GetCycleString(const Item &item);
    static QString GetChannelsString(const Item &item);
    static QString GetDecoderString(const Item &item);
    // Those of the direction finder: its state in words, or what it found.
    static QString GetAzimuthString(const Item &item);
    static QString GetDFQualityString(const Item &item);
    /// The global formatter words the position.
    static QString GetLocationString(const Item &item);
};

} // namespace values
