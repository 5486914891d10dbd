#include "apps/monitor/picture_p.h"

#include <algorithm>
#include <cmath>

namespace monitor {
namespace {

constexpr double kMicroseconds = 1e6;
/// A pause of this many usual intervals is a gap in the data and stays empty.
constexpr double kGapIntervals = 8.0;

/// The usual time from one row to the next, in microseconds.
double usualInterval(const std::vector<RowHistory::Row> &rows)
{
    std::vector<double> intervals;
    for (std::size_t i = 1; i < rows.size(); ++i)
        intervals.push_back(double(rows[i].first - rows[i - 1].first));
    if (intervals.empty())
        return kMicroseconds;
    const auto middle = intervals.begin() + std::ptrdiff_t(intervals.size() / 2);
    std::nth_element(intervals.begin(), middle, intervals.end());
    return std::max(*middle, 1.0);
}

/// Microseconds behind the first scan, end excluded, that each row fills in the picture.
struct Extent {
    double begin, end;
};

std::vector<Extent> rowExtents(const std::vector<RowHistory::Row> &rows)
{
    std::vector<Extent> extents;
    if (rows.empty())
        return extents;
    const double usual = usualInterval(rows);
    const KRTimeStamp origin = rows.front().first;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double begin = double(rows[i].first - origin);
        const double alone = std::max(double(rows[i].last - origin), begin) + usual;
        const double next = i + 1 < rows.size() ? double(rows[i + 1].first - origin) : alone;
        extents.push_back({begin, next - begin > kGapIntervals * usual ? alone : next});
    }
    return extents;
}

/// Paints one line of the image: the highest level that any of the rows had in a column.
class LinePainter {
public:
    LinePainter(const Scene &scene, std::size_t columns) : m_scene(scene), m_levels(columns) {}

    void paint(QRgb *line, std::size_t firstRow, std::size_t behindRow)
    {
        if (firstRow != m_firstRow || behindRow != m_behindRow)
            collect(firstRow, behindRow);
        for (std::size_t x = 0; x < m_levels.size(); ++x)
            line[x] = std::isnan(m_levels[x])
                          ? Theme::pane.rgb()
                          : m_scene.colours.at(m_scene.colourAxis.share(m_levels[x]));
    }

private:
    void collect(std::size_t firstRow, std::size_t behindRow)
    {
        m_firstRow = firstRow;
        m_behindRow = behindRow;
        m_levels.assign(m_levels.size(), std::nanf(""));
        const auto &rows = m_scene.display.history().rows();
        for (std::size_t row = firstRow; row < behindRow; ++row) {
            const auto folded = foldToColumns(rows[row].levels, m_levels.size());
            std::transform(folded.begin(), folded.end(), m_levels.begin(), m_levels.begin(),
                           [](float a, float b) { return std::fmax(a, b); });
        }
    }

    const Scene &m_scene;
    std::vector<float> m_levels;
    std::size_t m_firstRow = SIZE_MAX, m_behindRow = SIZE_MAX;
};

} // namespace

double waterfallSeconds(const RowHistory &history)
{
    const auto extents = rowExtents(history.rows());
    return extents.empty() ? 0.0 : (extents.back().end - extents.front().begin) / kMicroseconds;
}

void paintWaterfall(QPainter &painter, const Scene &scene)
{
    const auto extents = rowExtents(scene.display.history().rows());
    const QSize size = scene.waterfall.size().toSize();
    QImage image(size, QImage::Format_RGB32);
    if (extents.empty() || image.isNull())
        return;
    image.fill(Theme::pane);
    LinePainter linePainter(scene, std::size_t(size.width()));
    const double perLine = extents.back().end / size.height();
    std::size_t row = extents.size();
    for (int y = 0; y < size.height(); ++y) { // newest at the top
        const double late = extents.back().end - y * perLine;
        const double early = late - perLine;
        while (row > 0 && extents[row - 1].begin >= late)
            --row;
        std::size_t first = row;
        while (first > 0 && extents[first - 1].end > early)
            --first;
        linePainter.paint(reinterpret_cast<QRgb *>(image.scanLine(y)), first, row);
    }
    painter.drawImage(scene.waterfall.topLeft(), image);
}

} // namespace monitor
