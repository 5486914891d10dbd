#pragma once

#include "platform/axis/axisdefinition.h"
#include "platform/base/bytes.h"
#include "scanbuffer/messages/mdata.h"
#include "valueclasses/channels/pixelmap.h"
#include "valueclasses/samples/samplepairs.h"

#include <utility>
#include <vector>

/// The image of one value inside a message: numbers little-endian, samples in their raw form
/// whatever the data compress mode, records in the form that they give themselves.
namespace MDataImage {
template <typename T>
std::size_t size(const T &value)
{
    if constexpr (requires { T::kImageSize; })
        return T::kImageSize;
    else
        return values::rawImageSize(value);
}
template <typename T>
char *write(char *destination, const T &value)
{
    if constexpr (requires { T::kImageSize; })
        return value.ToBinary(destination);
    else
        return values::toRawImage(destination, value);
}
template <typename T>
T read(const char **cursor)
{
    if constexpr (requires { T::kImageSize; })
        return T::FromBinary(cursor);
    else
        return values::fromRawImage<T>(cursor);
}
} // namespace MDataImage

/// One value: a number, a flag, a sample, an axis.
///
/// An MYData of a sample may be sent as MDT_XMarkerResult; a display that asked for the marker
/// reads it with the reading constructor from behind the type, since FromBinary takes that type
/// for "nothing there" only.
template <typename T>
class SPECTREE_EXPORT MYData : public MData {
public:
    MYData(T value, MDataType type) : MData(type), m_value(std::move(value)) {}
    explicit MYData(const char **cursor) : m_value(MDataImage::read<T>(cursor)) {}
    const T &GetValue() const { return m_value; }

protected:
    std::size_t payloadSize() const override { return MDataImage::size(m_value); }
    char *writePayload(char *destination) const override
    {
        return MDataImage::write(destination, m_value);
    }

private:
    T m_value;
};

/// A range from a start to a stop, in either order.
template <typename T>
class SPECTREE_EXPORT MDataStartStop : public MData {
public:
    MDataStartStop(T start, T stop, MDataType type) : MData(type), m_start(start), m_stop(stop) {}
    explicit MDataStartStop(const char **cursor)
        : m_start(MDataImage::read<T>(cursor)), m_stop(MDataImage::read<T>(cursor))
    {
    }
    T GetValue() const { return m_start; } ///< the start
    T Stop() const { return m_stop; }

protected:
    std::size_t payloadSize() const override { return 2 * sizeof(T); }
    char *writePayload(char *destination) const override
    {
        return MDataImage::write(MDataImage::write(destination, m_start), m_stop);
    }

private:
    T m_start, m_stop;
};

/// Three values. MXYZData<double, double, short> is a y range: start, stop, dimension.
template <typename X, typename Y, typename Z>
class SPECTREE_EXPORT MXYZData : public MData {
public:
    MXYZData(X x, Y y, Z z, MDataType type) : MData(type), m_x(x), m_y(std::move(y)), m_z(z) {}
    explicit MXYZData(const char **cursor)
        : m_x(MDataImage::read<X>(cursor)), m_y(MDataImage::read<Y>(cursor)),
          m_z(MDataImage::read<Z>(cursor))
    {
    }
    X GetValue() const { return m_x; }
    const Y &YValue() const { return m_y; }
    Z ZValue() const { return m_z; }

protected:
    std::size_t payloadSize() const override
    {
        return MDataImage::size(m_x) + MDataImage::size(m_y) + MDataImage::size(m_z);
    }
    char *writePayload(char *destination) const override
    {
        destination = MDataImage::write(destination, m_x);
        return MDataImage::write(MDataImage::write(destination, m_y), m_z);
    }

private:
    X m_x;
    Y m_y;
    Z m_z;
};

/// Any number of values; only the low 32 bits of the count on the wire are read.
template <typename T>
class SPECTREE_EXPORT MDataVector : public MData {
public:
    MDataVector(std::vector<T> values, MDataType type) : MData(type), m_values(std::move(values)) {}
    explicit MDataVector(const char **cursor);
    const std::vector<T> &asVector() const { return m_values; }

protected:
    std::size_t payloadSize() const override
    {
        return sizeof(std::uint64_t) + m_values.size() * sizeof(T);
    }
    char *writePayload(char *destination) const override;

private:
    std::vector<T> m_values;
};

/// Every instance that the library holds: X(...) gets one class each. Types that no message id
/// leads to can be written and read back by their constructor.
#define SPECTREE_FOR_EACH_SCALAR_MESSAGE(X)                                                        \
    X(MYData<char>)                                                                                \
    X(MYData<bool>)                                                                                \
    X(MYData<short>)                                                                               \
    X(MYData<unsigned short>)                                                                      \
    X(MYData<Kelm::Long>)                                                                          \
    X(MYData<int>)                                                                                 \
    X(MYData<float>)                                                                               \
    X(MYData<double>)                                                                              \
    X(MYData<std::uint64_t>)                                                                       \
    X(MYData<values::Bearing>)                                                                     \
    X(MYData<values::MinMax>)                                                                      \
    X(MYData<values::Pulse>)                                                                       \
    X(MYData<values::BearingExtended>)                                                             \
    X(MYData<values::DFSpectrumSample>)                                                            \
    X(MYData<AxisData>)                                                                            \
    X(MYData<values::PixelMap>)                                                                    \
    X(MDataStartStop<double>)                                                                      \
    X(MXYZData<double, double, short>)                                                             \
    X(MXYZData<double, char, std::uint64_t>)                                                       \
    X(MXYZData<double, short, std::uint64_t>)                                                      \
    X(MXYZData<double, unsigned short, std::uint64_t>)                                             \
    X(MXYZData<double, Kelm::Long, std::uint64_t>)                                                 \
    X(MXYZData<double, float, std::uint64_t>)                                                      \
    X(MXYZData<double, double, std::uint64_t>)                                                     \
    X(MXYZData<double, values::Bearing, std::uint64_t>)                                            \
    X(MXYZData<double, values::MinMax, std::uint64_t>)                                             \
    X(MXYZData<double, values::Pulse, std::uint64_t>)                                              \
    X(MXYZData<double, std::uint64_t, std::uint64_t>)                                              \
    X(MXYZData<double, bool, std::uint64_t>)                                                       \
    X(MDataVector<unsigned char>)                                                                  \
    X(MDataVector<short>)                                                                          \
    X(MDataVector<unsigned short>)                                                                 \
    X(MDataVector<int>)                                                                            \
    X(MDataVector<double>)

#define SPECTREE_DECLARE_MESSAGE(...) extern template class SPECTREE_EXPORT __VA_ARGS__;
SPECTREE_FOR_EACH_SCALAR_MESSAGE(SPECTREE_DECLARE_MESSAGE)
#undef SPECTREE_DECLARE_MESSAGE
