#pragma once

#include "apps/receiver/recording.h"

#include <QFile>

#include <vector>

namespace receiver {

/// Finds out how \a path is to be read, by its content and name: a WAV file, SigMF (its metadata
/// or data file), or plain samples in \a formatName, which may be empty for files named .cu8,
/// .cs8, .cs16 or .cf32. For SigMF and WAV, \a formatName must be empty.
/// \throws Failure when the file can't be read, its format is unknown or its length odd
Recording openRecording(const QString &path, const QString &formatName);

/// The samples of a recording as numbers between -1 and 1, one after the other. One thread.
class IqReader {
public:
    /// \throws Failure when the data file can't be opened
    explicit IqReader(const Recording &recording);

    /// Writes up to \a count samples to \a out (two floats each when complex, else one) and returns
    /// how many; 0 at the end. What is no finite number reads as 0.
    /// \throws Failure when reading fails before the end
    std::size_t read(float *out, std::size_t count);
    void rewind();

private:
    Recording m_recording;
    QFile m_file;
    std::int64_t m_left = 0; // bytes
    std::vector<char> m_bytes;
};

} // namespace receiver
