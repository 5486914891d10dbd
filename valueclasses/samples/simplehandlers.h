#pragma once

#include "platform/base/types.h"
#include "valueclasses/samples/handlerbase_impl.h"

#include <string>

/// Handlers of samples that are one plain number. samplepairs.h tells what every handler offers.
namespace values {

/// Declares what each of them has in its own way; the bodies stand in simplehandlers.cpp.
#define SPECTREE_SIMPLE_HANDLER(Handler, Y, id, scale)                                             \
public:                                                                                            \
    static constexpr int GetId() { return id; }                                                    \
    static double GetDimension(int dimension, const Y &sample)                                     \
    {                                                                                              \
        if (dimension != 0) [[unlikely]]                                                           \
            throwDimension(kDimensionMessage, #Handler, #Handler "::GetDimension");                \
        return double(sample) / scale;                                                             \
    }                                                                                              \
    static QString &GetFormattedString(int dimension, QString &text, const Y &sample,              \
                                       int angleMode, const QString *unit);                        \
    static std::string ToString(const Y &sample)

class SPECTREE_EXPORT charHandler : public SimpleType_Binary<char> {
    static constexpr char kMinimum = -127;
    static constexpr const char *kDimensionMessage =
        "Base Type for ValueMap is char and has only one dimension!";
    SPECTREE_SIMPLE_HANDLER(charHandler, char, 100, 1);
    static const char &Minimum() { return kMinimum; }
};

class SPECTREE_EXPORT shortHandler : public SimpleType_Binary<short> {
    static constexpr short kMinimum = -9999;
    static constexpr const char *kDimensionMessage =
        "Base Type for ValueMap is short and has only one dimension!";
    SPECTREE_SIMPLE_HANDLER(shortHandler, short, 101, 1);
    static const short &Minimum() { return kMinimum; }
};

/// Levels in 1/10 of the level unit; in compress mode 1 one byte of whole units.
class SPECTREE_EXPORT levelHandler : public SimpleType_Binary<short> {
    static constexpr short kMinimum = -9999;
    static constexpr const char *kDimensionMessage =
        "Base Type for ValueMap is short and has only one dimension!";
    SPECTREE_SIMPLE_HANDLER(levelHandler, short, 102, 10.0);
    static const short &Minimum() { return kMinimum; }
    static void SetDimensionValue(int /*dimension*/, short &sample, double value)
    {
        sample = Detail::truncateTo<short>(value * 10.0);
    }

    static std::uint64_t SizeOf() { return GetDataCompressMode() == DataCompressed ? 1 : 2; }
    static char *ToBinary(char *destination, const short &sample);
    static short FromBinary(const char **cursor, bool &ok, int = 0);
};

class SPECTREE_EXPORT longHandler : public SimpleType_Binary<Kelm::Long> {
    static constexpr Kelm::Long kMinimum = -9999;
    static constexpr const char *kDimensionMessage =
        "Base Type for ValueMap is long and has only one dimension!";
    SPECTREE_SIMPLE_HANDLER(longHandler, Kelm::Long, 103, 1);
    static const Kelm::Long &Minimum() { return kMinimum; }
};

class SPECTREE_EXPORT floatHandler : public SimpleType_Binary<float> {
    static constexpr float kMinimum = -9999.0F;
    static constexpr const char *kDimensionMessage =
        "Base Type for ValueMap is float and has only one dimension!";
    SPECTREE_SIMPLE_HANDLER(floatHandler, float, 104, 1);
    static const float &Minimum() { return kMinimum; }
};

/// A float in per cent.
class SPECTREE_EXPORT floatPercentHandler : public floatHandler {
public:
    static constexpr int GetId() { return 105; }
    static QString &GetFormattedString(int dimension, QString &text, const float &sample,
                                       int angleMode, const QString *unit);
};

class SPECTREE_EXPORT doubleHandler : public SimpleType_Binary<double> {
    static constexpr double kMinimum = std::numeric_limits<double>::lowest();
    static constexpr const char *kDimensionMessage =
        "Base Type for ValueMap is double and has only one dimension!";
    SPECTREE_SIMPLE_HANDLER(doubleHandler, double, 106, 1);
    static const double &Minimum() { return kMinimum; }
};

#undef SPECTREE_SIMPLE_HANDLER

} // namespace values
