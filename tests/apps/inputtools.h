#pragma once

#include "apps/common/failure.h"
#include "apps/receiver/input.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <numbers>
#include <string>
#include <vector>

/// What the tests of the receiver's inputs share: files made on the spot, and failures as values.
namespace receivertest {

/// A folder for the files of one test, gone at its end.
class Files {
public:
    QString write(const char *name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return file.fileName();
    }
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

private:
    QTemporaryDir m_folder;
};

struct Outcome {
    int code = 0; ///< 0 when nothing was thrown
    std::string sentence;
};

template <typename Work>
Outcome outcomeOf(Work &&work)
{
    try {
        work();
    } catch (const apps::Failure &failure) {
        return {failure.code(), failure.what()};
    }
    return {};
}

/// The little-endian images of numbers, one after the other.
template <typename T>
QByteArray images(std::initializer_list<T> numbers)
{
    QByteArray bytes;
    for (const T number : numbers)
        bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
    return bytes;
}

inline std::vector<receiver::Scan> readAll(receiver::Input &input)
{
    std::vector<receiver::Scan> scans;
    for (receiver::Scan scan; scans.size() < 100000 && input.read(scan);)
        scans.push_back(scan);
    return scans;
}

/// Centre frequencies in the order of the channels.
inline std::vector<double> centers(const receiver::Grid &grid)
{
    std::vector<double> all;
    for (const receiver::Range &range : grid)
        for (std::uint32_t i = 0; i < range.count; ++i)
            all.push_back(range.firstCenter + i * range.step);
    return all;
}

/// The channel whose centre is nearest to \a frequency.
inline std::size_t channelAt(const receiver::Grid &grid, double frequency)
{
    const std::vector<double> all = centers(grid);
    std::size_t best = 0;
    for (std::size_t i = 1; i < all.size(); ++i)
        if (std::abs(all[i] - frequency) < std::abs(all[best] - frequency))
            best = i;
    return best;
}

} // namespace receivertest
