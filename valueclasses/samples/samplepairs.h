#pragma once

#include "valueclasses/mapping/mappingtypes.h"
#include "valueclasses/samples/dfspectrumsample.h"
#include "valueclasses/samples/pulsemapping.h"

#include <concepts>
#include <string>
#include <string_view>

/// The 13 pairs of a sample type and its handler, for which every spectral template is
/// instantiated: X(Y, Handler). Two pairs may share a sample type; the handler tells them apart.
#define SPECTREE_FOR_EACH_SAMPLE_PAIR(X)                                                           \
    X(char, ::values::charHandler)                                                                 \
    X(short, ::values::levelHandler)                                                               \
    X(short, ::values::shortHandler)                                                               \
    X(::Kelm::Long, ::values::longHandler)                                                         \
    X(float, ::values::floatHandler)                                                               \
    X(float, ::values::floatPercentHandler)                                                        \
    X(double, ::values::doubleHandler)                                                             \
    X(::values::Bearing, ::values::BearingHandler)                                                 \
    X(::values::MinMax, ::values::MinMaxHandler)                                                   \
    X(::values::MinMax, ::values::ElevOverAziMinMaxHandler)                                        \
    X(::values::Pulse, ::values::PulseHandler)                                                     \
    X(::values::BearingExtended, ::values::BearingExtendedHandler)                                 \
    X(::values::DFSpectrumSample, ::values::DFSpectrumSampleHandler)

namespace values {

/// What a spectral template may rely on. A handler holds static operations only; any thread may
/// call them. A dimension is one numeric facet of a sample, counted from 0 and read as a double;
/// one that does not exist throws KRException. Minimum() is the invalid sample and the start of
/// every running maximum. "Greater" is what the sample type's own operators say, nothing else.
// clang-format off: version 14 breaks each compound requirement into three lines
template <typename H, typename Y>
concept SampleHandler = requires(Y sample, const Y &constSample, QString text, const QString *unit,
                                 char *destination, const char **cursor, bool ok)
{
    {
        constSample < constSample
        } -> std::convertible_to<bool>;
    {
        constSample <= constSample
        } -> std::convertible_to<bool>;
    {
        constSample == constSample
        } -> std::convertible_to<bool>;
    {
        constSample != constSample
        } -> std::convertible_to<bool>;
    {
        H::GetId()
        } -> std::same_as<int>;
    {
        H::GetDimensionCnt()
        } -> std::same_as<int>;
    {
        H::GetDimension(0, constSample)
        } -> std::same_as<double>;
    H::SetDimensionValue(0, sample, 0.0);
    {
        H::GetFormattedString(0, text, sample, 0, unit)
        } -> std::same_as<QString &>;
    {
        H::ToString(constSample)
        } -> std::same_as<std::string>;
    {
        H::Minimum()
        } -> std::convertible_to<Y>;
    {
        H::SizeOf()
        } -> std::same_as<std::uint64_t>;
    {
        H::ToBinary(destination, constSample)
        } -> std::same_as<char *>;
    {
        H::FromBinary(cursor, ok, 0)
        } -> std::same_as<Y>;
    {
        H::GetDataCompressMode()
        } -> std::same_as<char>;
    {
        H::GetLevelUnit()
        } -> std::same_as<QString>;
    requires imageSize<Y>
    != 0;
};
// clang-format on

/// One pair as a type, for lists of types and typed tests.
template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
struct SamplePair {
    using Sample = Y;
    using Handler = YHandler;
};

namespace Detail {
template <template <typename...> class List, typename First, typename... Pairs>
struct DropFirst {
    using type = List<Pairs...>;
};
#define SPECTREE_NEXT_PAIR(Y, Handler) , SamplePair<Y, Handler>
template <template <typename...> class List>
using AllPairs =
    typename DropFirst<List, void SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_NEXT_PAIR)>::type;
#undef SPECTREE_NEXT_PAIR

template <typename Handler>
inline constexpr std::string_view handlerName;
#define SPECTREE_NAME_PAIR(Y, Handler)                                                             \
    template <>                                                                                    \
    inline constexpr std::string_view handlerName<Handler> =                                       \
        std::string_view(#Handler).substr(std::string_view("::values::").size());
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_NAME_PAIR)
#undef SPECTREE_NAME_PAIR
} // namespace Detail

/// \a List of all pairs in order, for example SamplePairList<std::tuple> or, in a typed test,
/// SamplePairList<testing::Types>.
template <template <typename...> class List>
using SamplePairList = Detail::AllPairs<List>;

/// The name of a pair is its handler's, "levelHandler" for example.
template <typename Handler>
inline constexpr std::string_view pairName = Detail::handlerName<Handler>;

/// The third argument of TYPED_TEST_SUITE over a SamplePairList.
struct SamplePairNames {
    template <typename Pair>
    static std::string GetName(int)
    {
        return std::string(pairName<typename Pair::Handler>);
    }
};

} // namespace values
