#pragma once

#include "scanbuffer/messages/mdatabytearray.h"

#include <vector>

/// Several messages that arrive together, so that a display never shows half of a state.
class SPECTREE_EXPORT MDataContainer final : public MDataByteArray {
public:
    MDataContainer() : MDataByteArray({}, 0, MDT_Container) {}
    /// Unpacks at once. \throws KRException for bytes that don't unpack
    explicit MDataContainer(const char **cursor);

    /// Appends the wire image of \a message. \throws KRException when 32767 are in already, and for
    /// a container out of another one that doesn't unpack
    void addMData(const MData &message);
    /// A freshly parsed copy. Null for an index outside 0 up to, not including, GetAdditional(),
    /// and for a message that doesn't parse, with which those behind it are lost too. A container
    /// in this one unpacks when it is asked for something.
    std::unique_ptr<MData> getMData(short index) const;

private:
    enum class Unpacking { later };
    MDataContainer(const char **cursor, Unpacking);
    static std::unique_ptr<MData> parseContained(const char **cursor);
    void requireUnpacked() const;
    void analyse() const;

    /// Where each contained message begins in the plain payload. Offsets, not addresses: the
    /// payload moves when it grows, packs, or is copied.
    mutable std::vector<std::size_t> m_starts;
};
