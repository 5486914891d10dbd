#pragma once

#include "valueclasses/detection.h"
#include "valueclasses/records/alarmresult.h"
#include "valueclasses/records/bearingresult.h"
#include "valueclasses/records/burst.h"
#include "valueclasses/records/checkedstring.h"
#include "valueclasses/records/ddcfrequency.h"
#include "valueclasses/records/extendeddetection.h"
#include "valueclasses/records/frequencymask.h"
#include "valueclasses/records/gsmresult.h"
#include "valueclasses/records/hmaprange.h"
#include "valueclasses/records/quadfloat.h"
#include "valueclasses/records/recordranges.h"
#include "valueclasses/records/rectanglencolor.h"
#include "valueclasses/records/specialinterest.h"
#include "valueclasses/records/trafficcontrolfrequency.h"
#include "valueclasses/records/wkf.h"
#include "valueclasses/valuelist.h"
#include "valueclasses/valuevector.h"

/// The kinds of lists and vectors: element, text format, type number, registered name. These two
/// lists drive every instance, test and registration.
#define SPECTREE_FOR_EACH_LIST_KIND(X)                                                             \
    X(bool, FormatBool<bool>, VTYPE_ValueBoolList, "ValueBoolList")                                \
    X(int, FormatInt<int>, VTYPE_ValueIntList, "ValueIntList")                                     \
    X(double, FormatFloat<double>, VTYPE_ValueFloatList, "ValueFloatList")                         \
    X(QString, FormatString<QString>, VTYPE_ValueStringList, "ValueStringList")                    \
    X(HMapRange, FormatHMapRange, VTYPE_ValueHMapRangeList, "ValueHMapRangeList")                  \
    X(HVMapRange, FormatHVMapRange, VTYPE_ValueHVMapRangeList, "ValueHVMapRangeList")              \
    X(DetectionConventional, FormatDetectionConventional, VTYPE_ValueDetectionList,                \
      "ValueDetectionList")                                                                        \
    X(GSMResult, GSMResultFormat, VTYPE_ValueGSMResult, "ValueGSMResult")                          \
    X(AlarmResult, FormatAlarmResult, VTYPE_ValueAlarmResultList, "ValueAlarmResultList")          \
    X(IPC::Burst, IPC::FormatBurst, VTYPE_ValueBurstList, "ValueBurstList")                        \
    X(IPC::BurstHistResult, IPC::FormatBurstHistResult, VTYPE_ValueBurstHistResultList,            \
      "ValueBurstHistResultList")                                                                  \
    X(ExtendedDetectionConventional, FormatExtendedDetectionConventional,                          \
      VTYPE_ValueExtendedDetectionList, "ValueExtendedDetectionList")                              \
    X(RecordRanges, FormatRecordRanges, VTYPE_ValueRecordRangesList, "ValueRecordRangesList")      \
    X(BearingResult, FormatBearingResult, VTYPE_ValueBearingResultList, "ValueBearingResultList")  \
    X(QuadFloat, QuadFloatFormat, VTYPE_ValueQuadFloatList, "ValueQuadFloatList")                  \
    X(BinaryBuffer<36>, RectangleNColor, VTYPE_ValueRectNColorList, "ValueRectNColorList")         \
    X(TrafficControlFrequency, FormatTrafficControlFrequency, VTYPE_TrafficControlFrequencyList,   \
      "TrafficControlFrequencyList")                                                               \
    X(BaseStation, BaseStationFormat, VTYPE_BaseStationList, "BaseStationList")                    \
    X(Wkf, FormatWkf, VTYPE_WkfList, "WkfList")                                                    \
    X(DdcFrequency, FormatDdcFrequency, VTYPE_DdcFrequencyList, "DdcFrequencyList")                \
    X(FrequencyMask, FormatFrequencyMask, VTYPE_FrequencyMaskList, "FrequencyMaskList")            \
    X(SpecialInterest, FormatSpecialInterest, VTYPE_Unknown, "Unknown")

#define SPECTREE_FOR_EACH_VECTOR_KIND(X)                                                           \
    X(CheckedString, FormatCheckedString, VTYPE_ValueCheckedStringsValueVector,                    \
      "ValuecheckedStringsValueVector")                                                            \
    X(bool, FormatBool<bool>, VTYPE_BooleanValueVector, "BooleanValueVector")                      \
    X(char, FormatInt<char>, VTYPE_CharValueVector, "CharValueVector")                             \
    X(int, FormatInt<int>, VTYPE_IntValueVector, "IntValueVector")                                 \
    X(Kelm::Long, FormatInt<Kelm::Long>, VTYPE_LongValueVector, "LongValueVector")                 \
    X(std::int64_t, FormatInt64<std::int64_t>, VTYPE_Int64ValueVector, "Int64ValueVector")         \
    X(unsigned short, FormatInt<unsigned short>, VTYPE_UInt16ValueVector, "UInt16ValueVector")     \
    X(unsigned int, FormatInt<unsigned int>, VTYPE_UInt32ValueVector, "UInt32ValueVector")         \
    X(std::uint64_t, FormatInt64<std::uint64_t>, VTYPE_UInt64ValueVector, "UInt64ValueVector")     \
    X(float, FormatFloat<float>, VTYPE_FloatValueVector, "FloatValueVector")                       \
    X(double, FormatFloat<double>, VTYPE_DoubleValueVector, "DoubleValueVector")                   \
    X(QString, FormatString<QString>, VTYPE_QStringValueVector, "QStringValueVector")

namespace values {

#define SPECTREE_DECLARE(T, FormatClass, Type, Name)                                               \
    template <>                                                                                    \
    struct ListKind<T, FormatClass> {                                                              \
        static constexpr ValueType kType = Type;                                                   \
        static constexpr const char *kTypeName = Name;                                             \
    };                                                                                             \
    extern template class SPECTREE_EXPORT ValueList<T, FormatClass>;
SPECTREE_FOR_EACH_LIST_KIND(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

#define SPECTREE_DECLARE(T, FormatClass, Type, Name)                                               \
    template <>                                                                                    \
    struct VectorKind<T, FormatClass> {                                                            \
        static constexpr ValueType kType = Type;                                                   \
        static constexpr const char *kTypeName = Name;                                             \
    };                                                                                             \
    extern template class SPECTREE_EXPORT ValueVector<T, FormatClass>;
SPECTREE_FOR_EACH_VECTOR_KIND(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace values
