#pragma once

#include "scanbuffer/messages/mdatascalar.h"

/// The points of a curve over frequency, whether it is smoothed, and its offset in dB.
class SPECTREE_EXPORT MDataKFactor final : public MDataVector<double> {
public:
    MDataKFactor(std::vector<double> points, bool smooth, double offset, MDataType type)
        : MDataVector(std::move(points), type), m_smooth(smooth), m_offset(offset)
    {
    }
    explicit MDataKFactor(const char **cursor);
    bool GetSmooth() const { return m_smooth; }
    double GetOffset() const { return m_offset; }

protected:
    std::size_t payloadSize() const override;
    char *writePayload(char *destination) const override;

private:
    bool m_smooth = false;
    double m_offset = 0;
};
