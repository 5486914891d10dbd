#pragma once

#include <cstdint>

namespace sbs {

/// What the size manager needs of a scan buffer. Any thread.
class BufferSizeManagementInterface {
public:
    virtual std::uint32_t getMinimumNumberOfLines() const = 0;
    virtual std::uint32_t getMaximumNumberOfLines() const = 0;
    /// Lines that the ring can hold, times channels, times the packed size of a sample.
    virtual std::uint64_t getSizeInBytes() const = 0;
    /// The limit that setNumberOfLines() keeps; a larger ring shrinks at once, down to the few
    /// lines that it always has.
    virtual void setMaximumSizeInBytes(std::uint64_t bytes) = 0;
    /// Asks for a ring of \a lines; returns the number reached, which the limits may lower, or 0
    /// while no channels are known.
    virtual std::uint32_t setNumberOfLines(unsigned int lines) = 0;
    virtual std::uint32_t getNumberOfLines() const = 0;

protected:
    ~BufferSizeManagementInterface() = default;
};

} // namespace sbs
