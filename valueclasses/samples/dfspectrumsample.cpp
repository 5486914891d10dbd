#include "valueclasses/samples/dfspectrumsample.h"

#include "platform/base/sync.h"
#include "valueclasses/samples/sampletext_p.h"

namespace values {
namespace {

struct OwnUnit {
    Kelm::Mutex mutex;
    QString unit SPECTREE_GUARDED_BY(mutex);
};

OwnUnit &ownUnit()
{
    // Never destroyed: a thread that still runs at exit may come here.
    static auto *const own = new OwnUnit;
    return *own;
}

template <typename T>
T roundedHundredths(double value)
{
    return Detail::truncateTo<T>(value * 100.0 + 0.5);
}

} // namespace

SuperResolutionSample &DFSpectrumSample::createSuperResolutionSample()
{
    if (m_waves)
        *m_waves = {};
    else
        m_waves = std::make_unique<SuperResolutionSample>();
    return *m_waves;
}

std::unique_ptr<SuperResolutionSample> DFSpectrumSample::clone(const SuperResolutionSample &waves)
{
    return std::make_unique<SuperResolutionSample>(waves);
}

void DFSpectrumSample::assignWaves(const DFSpectrumSample &other)
{
    if (this != &other)
        m_waves = other.m_waves ? clone(*other.m_waves) : nullptr;
}

char *RawImage<DFSpectrumSample>::write(char *destination, const DFSpectrumSample &sample)
{
    destination = Kelm::putLittleEndian(destination, sample.getValidity());
    destination = Kelm::putLittleEndian(destination, sample.getLevel());
    destination = Kelm::putLittleEndian(destination, sample.getShortTimeLevel());
    destination = Kelm::putLittleEndian(destination, sample.getFieldStrength());
    destination = Kelm::putLittleEndian(destination, sample.getAzimuth());
    destination = Kelm::putLittleEndian(destination, sample.getElevation());
    destination = Kelm::putLittleEndian(destination, sample.getQuality());
    const SuperResolutionSample *waves = sample.getSuperResolutionSample();
    destination = Kelm::putLittleEndian(destination, waves != nullptr);
    return waves != nullptr ? waves->ToBinary(destination) : destination;
}

DFSpectrumSample RawImage<DFSpectrumSample>::read(const char **cursor)
{
    const char *position = *cursor;
    Kelm::requireBytes(position, size);
    DFSpectrumSample sample;
    sample.setValidity(Detail::takeCounted<DFSpectrumSample::Validity>(position));
    sample.setLevel(Detail::takeCounted<std::int16_t>(position));
    sample.setShortTimeLevel(Detail::takeCounted<std::int16_t>(position));
    sample.setFieldStrength(Detail::takeCounted<std::int16_t>(position));
    sample.setAzimuth(Detail::takeCounted<std::uint16_t>(position));
    sample.setElevation(Detail::takeCounted<std::int16_t>(position));
    sample.setQuality(Detail::takeCounted<std::int16_t>(position));
    if (Detail::takeCounted<std::uint8_t>(position) != 0)
        sample.createSuperResolutionSample() = SuperResolutionSample::FromBinary(&position);
    *cursor = position;
    return sample;
}

void DFSpectrumSampleHandler::SetDimensionValue(int dimension, DFSpectrumSample &sample,
                                                double value)
{
    switch (dimension) {
    case 0:
        sample.setLevel(roundedHundredths<std::int16_t>(value));
        break;
    case 2:
        sample.setShortTimeLevel(roundedHundredths<std::int16_t>(value));
        break;
    case 3:
        sample.setAzimuth(roundedHundredths<std::uint16_t>(value));
        break;
    case 4:
        sample.setElevation(roundedHundredths<std::int16_t>(value));
        break;
    case 5:
        sample.setQuality(Detail::truncateTo<std::int16_t>(value));
        break;
    case 6:
        sample.setFieldStrength(roundedHundredths<std::int16_t>(value));
        break;
    default:
        break;
    }
}

QString &DFSpectrumSampleHandler::GetFormattedString(int, QString &text,
                                                     const DFSpectrumSample &sample, int angleMode,
                                                     const QString *unit)
{
    text = Detail::levelText(sample.getLevel() / 100.0, unit);
    if (sample.getQuality() > 0) {
        const double azimuth = Detail::normalisedAzimuth(sample.getAzimuth() / 100.0, angleMode);
        text += QStringLiteral("\n%1 °").arg(Detail::withOneDigit(azimuth));
    }
    text += QStringLiteral("\n%1 dBµV/m\n%2 %\n%3")
                .arg(Detail::withOneDigit(sample.getFieldStrength() / 100.0),
                     QString::number(sample.getQuality()),
                     BearingExtended::ValidStr(sample.getValidity()));
    return text += Detail::shortTimeLine(sample.getShortTimeLevel(), unit);
}

std::string DFSpectrumSampleHandler::ToString(const DFSpectrumSample &sample)
{
    return QStringLiteral("[Level:%1 Az:%2 El:%3 Qual:%4]")
        .arg(sample.getLevel())
        .arg(sample.getAzimuth())
        .arg(sample.getElevation())
        .arg(sample.getQuality())
        .toStdString();
}

QString DFSpectrumSampleHandler::GetLevelUnit()
{
    OwnUnit &own = ownUnit();
    const Kelm::MutexLocker lock(own.mutex);
    return own.unit;
}

void DFSpectrumSampleHandler::SetLevelUnit(const QString &unit)
{
    OwnUnit &own = ownUnit();
    const Kelm::MutexLocker lock(own.mutex);
    own.unit = unit;
}

char *DFSpectrumSampleHandler::ToBinary(char *destination, const DFSpectrumSample &sample)
{
    return toRawImage(destination, sample);
}

DFSpectrumSample DFSpectrumSampleHandler::FromBinary(const char **cursor, bool &, int)
{
    return fromRawImage<DFSpectrumSample>(cursor);
}

} // namespace values
