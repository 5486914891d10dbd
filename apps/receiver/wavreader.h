#pragma once

#include "apps/receiver/recording.h"

#include <QFileDevice>

namespace receiver {

/// True when the file begins as a RIFF WAVE file does. Leaves the file at its beginning.
bool isWav(QIODevice &device);

/// Reads the header of a WAV file: mono means real samples, stereo means I (left) and Q (right).
/// Unknown chunks are skipped; samples that end early end the recording, with a warning. The name
/// in \a name goes into messages and becomes the data file.
/// \throws Failure when it is no WAV file, or one of a kind that isn't read
Recording readWavHeader(QIODevice &device, const QString &name);
inline Recording readWavHeader(QFileDevice &file) { return readWavHeader(file, file.fileName()); }

} // namespace receiver
