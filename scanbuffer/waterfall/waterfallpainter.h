#pragma once

#include "scanbuffer/waterfall/waterfallcolors.h"
#include "valueclasses/samples/samplepairs.h"

#include <type_traits>
#include <vector>

namespace sbs {

/// Paints lines of samples as rows of colour bytes.
///
/// Where no rule writes, a byte of the row stays. Levels of 8 and 16 bits without a reference go
/// through a table of all values, built only when the colours change; it gives what the plain rules
/// give. Single-threaded; takes no memory once it has seen a width.
template <typename Y, typename YHandler>
class WaterfallPainter {
public:
    struct Rules {
        WaterfallColors colors{};
        short dimension = 0;       ///< shown; the level (dimension 0) decides about the threshold
        bool skipNegative = false; ///< a negative value leaves the byte
        bool relative = false;     ///< levels count from the reference line
        bool thresholdActive = false;
    };
    /// One value a pixel, and the one for pixels beyond.
    struct Line {
        const std::vector<double> *values;
        double beyond;
    };

    /// What holds for the lines that follow. \a referenceOf(pixel) is asked only when levels are
    /// relative.
    template <typename Reference>
    void setRules(const Rules &rules, int pixels, const Line &thresholds,
                  const Reference &referenceOf);
    /// \pre setRules with at least \a pixels; as many samples and bytes
    void paint(const Y *samples, int pixels, char *row) const;

private:
    static constexpr bool kHasTable = std::is_same_v<Y, short> || std::is_same_v<Y, char>;

    bool usesTable() const { return kHasTable && !m_rules.relative && m_rules.dimension == 0; }
    static std::size_t slot(Y sample) { return std::make_unsigned_t<Y>(sample); }
    bool takeThresholds(int pixels, const Line &thresholds);
    void buildTable();
    void buildLimits();
    static int limitFor(double threshold);
    void paintByTable(const Y *samples, int pixels, char *row) const;
    void paintAbsolute(const Y &sample, int pixel, char &byte) const;
    void paintRelative(const Y &sample, int pixel, char &byte) const;
    void paintShown(const Y &sample, double level, char &byte) const;

    Rules m_rules{};
    std::vector<double> m_thresholds, m_references; // one a pixel
    std::vector<int> m_limits;                      // the greatest sample that is hidden, by pixel
    std::vector<char> m_table;                      // colour by sample
    WaterfallColors m_tableColors;
};

} // namespace sbs
