#pragma once

#include "platform/base/export.h"

#include <QString>

#include <atomic>

namespace values {

/// How samples are serialised in commands and channel lines. Any other number writes the raw form
/// and reads nothing.
enum DataCompressMode : char {
    DataRaw = 0,        ///< every field in full
    DataCompressed = 1, ///< levels in whole units, bearings in whole degrees
};

/// What all sample handlers of the process share: the data compress mode and the level unit.
///
/// Threads: any thread may read and write either; a mode is set during setup or by a command, and
/// a reader and a writer of the same bytes must have the same one.
class SPECTREE_EXPORT HandlerBase {
public:
    /// 0 (raw) at start; see DataCompressMode.
    static char GetDataCompressMode() { return s_mode.load(std::memory_order_relaxed); }
    /// Always returns true.
    static bool SetDataCompressMode(char mode);
    /// The display unit of levels, for example "dBm"; empty at start.
    static QString GetLevelUnit();
    static void SetLevelUnit(const QString &unit);

protected:
    [[noreturn]] static void throwDimension(const char *message, const char *className,
                                            const char *functionName);

private:
    static std::atomic<char> s_mode;
};

} // namespace values
