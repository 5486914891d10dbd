#pragma once

#include "platform/base/types.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace receiver {

/// How one number of a sample is stored.
enum class NumberKind : std::uint8_t { u8, i8, u16, i16, i24, i32, u32, f32, f64 };

std::size_t bytesOf(NumberKind kind);

/// How samples lie in a file.
struct SampleFormat {
    NumberKind kind = NumberKind::u8;
    bool complex = true; ///< I and Q alternate; otherwise real samples
    bool bigEndian = false;
    std::uint32_t channels = 1; ///< interleaved sample by sample; only the first is read
    /// The number that stands for zero in unsigned kinds, and the one that is full scale.
    double zero = 127.5, fullScale = 127.5;

    std::size_t bytesPerSample() const { return bytesOf(kind) * (complex ? 2 : 1) * channels; }
};

/// The format with the usual zero and full scale of its kind (u8 about 127.5).
SampleFormat makeFormat(NumberKind kind, bool complex);
/// "cu8", "cs8", "cs16" or "cf32", little-endian; nullopt for any other name.
std::optional<SampleFormat> formatByName(const QString &name);

/// Where the samples of a recording are and what they mean.
struct Recording {
    QString dataFile;
    std::int64_t offset = 0; ///< bytes before the first sample
    std::int64_t size = 0;   ///< bytes of samples, a whole number of samples
    SampleFormat format;
    double rate = 0;       ///< samples per second
    double center = 0;     ///< Hz: the middle of complex samples, the dial of real ones
    KRTimeStamp start = 0; ///< time of the first sample, 0 when unknown
    QStringList warnings;  ///< sentences about what was tolerated
};

} // namespace receiver
