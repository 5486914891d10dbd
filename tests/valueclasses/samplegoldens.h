#pragma once

#include "byteimages.h"
#include "valueclasses/samples/samplepairs.h"

#include <string>

/// One sample of each pair and its bytes, written out by hand.
namespace goldens {

/// `raw` is the form of mode 0, `compressed` that of mode 1, and `back` is the raw form of what a
/// reader in mode 1 gets from it.
struct Bytes {
    std::string raw, compressed = raw, back = raw;
};

template <typename Handler>
struct Golden;

template <>
struct Golden<values::charHandler> {
    static char sample() { return -5; }
    static Bytes bytes() { return {"fb"}; }
};
template <>
struct Golden<values::levelHandler> {
    static short sample() { return 123; }
    static Bytes bytes() { return {"7b 00", "0c", "78 00"}; }
};
template <>
struct Golden<values::shortHandler> {
    static short sample() { return 300; }
    static Bytes bytes() { return {"2c 01"}; }
};
template <>
struct Golden<values::longHandler> {
    static Kelm::Long sample() { return -2; }
    static Bytes bytes() { return {"fe ff ff ff"}; }
};
template <>
struct Golden<values::floatHandler> {
    static float sample() { return 1.5F; }
    static Bytes bytes() { return {"00 00 c0 3f"}; }
};
template <>
struct Golden<values::floatPercentHandler> {
    static float sample() { return -0.25F; }
    static Bytes bytes() { return {"00 00 80 be"}; }
};
template <>
struct Golden<values::doubleHandler> {
    static double sample() { return 2.5; }
    static Bytes bytes() { return {"00 00 00 00 00 00 04 40"}; }
};
template <>
struct Golden<values::BearingHandler> {
    static values::Bearing sample() { return {1, -2, 4567, 12345, 678, 90}; }
    static Bytes bytes()
    {
        return {"01 00 00 00 fe ff ff ff d7 11 39 30 a6 02 5a 00", "5a c3 1e 7a",
                "00 00 00 00 00 00 00 00 94 11 0c 30 58 02 5a 00"};
    }
};
template <>
struct Golden<values::MinMaxHandler> {
    static values::MinMax sample() { return {-100, 250}; }
    static Bytes bytes() { return {"9c ff fa 00"}; }
};
template <>
struct Golden<values::ElevOverAziMinMaxHandler> {
    static values::MinMax sample() { return {7, -3}; }
    static Bytes bytes() { return {"07 00 fd ff"}; }
};
template <>
struct Golden<values::PulseHandler> {
    static values::Pulse sample()
    {
        values::Pulse pulse(-10, 200, 7, 0, 0);
        pulse.pulseLevelMin = 100;
        pulse.pulseCount = 513;
        return pulse;
    }
    static Bytes bytes() { return {"f6 ff c8 00 64 00 01 02 07"}; }
};
template <>
struct Golden<values::BearingExtendedHandler> {
    static values::BearingExtended sample()
    {
        return {Golden<values::BearingHandler>::sample(), values::BearingExtended::Validity::blank,
                -1234};
    }
    static Bytes bytes()
    {
        return {"01 00 00 00 fe ff ff ff d7 11 39 30 a6 02 5a 00 02 2e fb", "5a c3 1e 7a bb 04",
                "00 00 00 00 00 00 00 00 94 11 0c 30 58 02 5a 00 02 50 fb"};
    }
};
template <>
struct Golden<values::DFSpectrumSampleHandler> {
    static values::DFSpectrumSample sample()
    {
        values::DFSpectrumSample sample;
        sample.setValidity(values::DFSpectrumSample::Validity::valid);
        sample.setLevel(100);
        sample.setShortTimeLevel(-1);
        sample.setFieldStrength(2);
        sample.setAzimuth(36000);
        sample.setElevation(-5);
        sample.setQuality(99);
        auto &waves = sample.createSuperResolutionSample();
        waves.setReliability(values::SuperResolutionSample::Reliability(3));
        const std::int16_t level[] = {10, 20}, strength[] = {30, 40}, azimuth[] = {50, 60},
                           elevation[] = {-1, -2}, quality[] = {70, 80};
        waves.setLevel(level, 2);
        waves.setFieldStrength(strength, 2);
        waves.setAzimuth(azimuth, 2);
        waves.setElevation(elevation, 2);
        waves.setQuality(quality, 2);
        return sample;
    }
    static Bytes bytes()
    {
        return {"01 64 00 ff ff 02 00 a0 8c fb ff 63 00 01 02 03 0a 00 14 00 1e 00 28 00 32 00 3c "
                "00 ff ff fe ff 46 00 50 00"};
    }
};

} // namespace goldens
