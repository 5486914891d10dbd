#pragma once

#include "apps/receiver/recording.h"

#include <QByteArray>

namespace receiver {

/// What SigMF metadata tell, before the data file is looked at.
struct SigMfMeta {
    SampleFormat format;
    double rate = 0;
    double center = 0;
    KRTimeStamp start = 0;
    std::int64_t headerBytes = 0, trailingBytes = 0;
    std::int64_t firstSample = 0;  ///< position in the data file of the segment that is read
    std::int64_t sampleCount = -1; ///< of that segment; -1 means to the end of the file
    QString dataset;               ///< the data file's name if it does not conform
    QStringList warnings;
};

/// Reads metadata. Unknown keys are ignored, as is an absent byte order (taken as little-endian)
/// and a time with an offset instead of "Z". Of several segments on different frequencies the first
/// is taken, with a warning. \a name goes into messages.
/// \throws Failure when it is no SigMF, or of a kind that can't be read
SigMfMeta parseSigMfMeta(const QByteArray &json, const QString &name);

/// The metadata file that belongs to \a path, which may be that file itself, or any data file with
/// one beside it; empty when there is none.
QString sigMfMetaFor(const QString &path);

/// Reads \a metaPath and finds its data file: NAME.sigmf-data, else NAME.iq, .raw, .bin or .cfile
/// with a warning. \throws Failure as parseSigMfMeta, and when there is no usable data file
Recording readSigMf(const QString &metaPath);

} // namespace receiver
