#include "scanbuffer/messages/mdata.h"

#include "helpers/enumrangecheck.h"
#include "platform/base/bytes.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "scanbuffer/mdatatypes.h"

#include <array>
#include <initializer_list>

namespace {

using Reader = std::unique_ptr<MData> (*)(const char **cursor, MDataType type);
using Readers = std::array<Reader, MDT_Count>;

std::unique_ptr<MData> readId(const char **, MDataType type)
{
    return std::make_unique<MDataId>(type);
}

template <typename Carrier>
std::unique_ptr<MData> read(const char **cursor, MDataType type)
{
    auto message = std::make_unique<Carrier>(cursor);
    message->SetType(type);
    return message;
}

constexpr void set(Readers &readers, Reader reader, std::initializer_list<int> types)
{
    for (const int type : types)
        readers[std::size_t(type)] = reader;
}

/// Which class carries which type. The types without a carrier stay null.
constexpr Readers makeReaders()
{
    Readers readers{};
    set(readers, readId, {14, 47, 68});
    set(readers, read<MYData<char>>, {30, 46, 55});
    set(readers, read<MYData<bool>>,
        {10, 12, 19, 20, 28, 31, 35, 39, 43, 44, 50, 54, 67, 69, 70, 73, 76});
    set(readers, read<MYData<short>>, {15, 16, 32, 33, 51, 52, 56, 57, 71});
    set(readers, read<MYData<unsigned short>>, {34, 36, 42, 49, 53});
    set(readers, read<MYData<Kelm::Long>>, {2, 58});
    set(readers, read<MYData<int>>, {72});
    set(readers, read<MYData<float>>, {59, 60});
    set(readers, read<MYData<double>>, {1, 9, 11, 37, 45, 61});
    set(readers, read<MYData<std::uint64_t>>, {13});
    set(readers, read<MYData<values::Bearing>>, {62});
    set(readers, read<MYData<values::MinMax>>, {63, 64});
    set(readers, read<MYData<values::BearingExtended>>, {65});
    set(readers, read<MYData<values::Pulse>>, {66});
    set(readers, read<MYData<values::DFSpectrumSample>>, {75});
    set(readers, read<MYData<AxisData>>, {41});
    set(readers, read<MYData<values::PixelMap>>, {40});
    set(readers, read<MDataByteArray>, {3, 21, 22, 77});
    set(readers, read<MDataContainer>, {74});
    set(readers, read<MDataStartStop<double>>, {6, 7});
    set(readers, read<MXYZData<double, double, short>>, {48});
    set(readers, read<MDataVector<double>>, {17, 18});
    set(readers, read<MDataVector<unsigned short>>, {24});
    set(readers, read<MDataVector<int>>, {38});
    set(readers, read<MDataKFactor>, {25, 26, 27});
    set(readers, read<MDataWaterfall>, {4});
    set(readers, read<MDataChannelRangeDefinition>, {5});
    set(readers, read<MDataAzimuth>, {8});
    set(readers, read<MDataWaterfallArea>, {29});
    set(readers, read<MDataStaticHistogramWanted>, {23});
    return readers;
}

constexpr Readers kReaders = makeReaders();

std::unique_ptr<MData> refuse(int error)
{
    SPECTREE_TRACE(TraceWarnings,
                   QStringLiteral("Error %1 while composing a MData Object").arg(error));
    return nullptr;
}

} // namespace

MData::~MData() = default;

char *MData::write(char *destination) const
{
    char *end = writePayload(Kelm::putLittleEndian(destination, m_type));
    *end = ';';
    return end + 1;
}

std::string MData::GetBinary() const
{
    std::string image(GetBinarySize(), '\0');
    write(image.data());
    return image;
}

MData::operator QByteArray() const
{
    QByteArray image(int(GetBinarySize()), Qt::Uninitialized);
    write(image.data());
    return image;
}

std::uint32_t MData::GetBinarySize() const { return std::uint32_t(payloadSize() + 5); }

std::unique_ptr<MData> MData::FromBinary(const char *data, Kelm::Long length)
{
    const Kelm::ReadScope scope(data, length > 0 ? std::size_t(std::int32_t(length)) : 0);
    auto message = parse(&data);
    // A marker result with a sample may begin with the byte of the terminator.
    if (message != nullptr && message->GetType() == MDT_XMarkerResult && Kelm::bytesLeft(data) != 0)
        return refuse(2);
    return message;
}

std::unique_ptr<MData> MData::parse(const char **cursor)
{
    if (Kelm::bytesLeft(*cursor) < sizeof(std::uint32_t))
        return refuse(2);
    const auto number = Kelm::readLittleEndian<std::uint32_t>(cursor);
    const auto type = values::EnumRangeCheck<MDataType>(number, MDT_Count);
    const Reader reader = kReaders[type];
    if (reader == nullptr)
        return refuse(1);
    try {
        auto message = reader(cursor, type);
        if (Kelm::bytesLeft(*cursor) == 0 || **cursor != ';')
            return refuse(2);
        ++*cursor;
        return message;
    } catch (const std::exception &) { // a short payload, or ranges that share a channel id
        return refuse(2);
    }
}
