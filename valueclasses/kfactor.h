#pragma once

#include "valueclasses/records/record.h"
#include "valueclasses/value.h"

#include <limits>
#include <set>
#include <vector>

namespace values {

/// One point of a curve over frequency.
struct KF {
    static constexpr double kNoMinimum = std::numeric_limits<double>::lowest();

    double frequency = 0.0; ///< Hz
    double value = 0.0;     ///< dB, or dBµV of a limit line
    double minimum = kNoMinimum;

    bool operator==(const KF &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.frequency, record.value, record.minimum);
    }
};

/// A curve over frequency: the correction of a transducer, or a limit line. At most one point a
/// frequency, in rising order.
///
/// Equality looks at what the stream form holds: the transducer's and the file's name are not part
/// of it.
/// Errors: KRException for a frequency that isn't a number, with nothing changed.
class SPECTREE_EXPORT KFactor {
public:
    const QString &GetTransducerName() const { return m_transducerName; }
    const QString &GetDescription() const { return m_description; }
    void SetDescription(const QString &description) { m_description = description; }
    /// Of the file that holds just these points; empty after a change.
    const QString &GetFileName() const { return m_fileName; }

    // Points
    /// Where there is a point of that frequency, the larger value and the smaller minimum stay. A
    /// new point puts offsets and reduced frame back to their defaults.
    void Add(double frequency, double value, double minimum = KF::kNoMinimum);
    void Add(const KF &point) { Add(std::vector<KF>{point}); }
    void Add(const std::vector<KF> &points);
    /// Replaces all.
    void Set(const std::vector<KF> &points);
    const std::vector<KF> &GetList() const { return m_points; }
    /// At least two points.
    bool valid() const { return m_points.size() > 1; }
    /// In Hz; 0 without a point.
    double MinFrequency() const { return m_points.empty() ? 0.0 : m_points.front().frequency; }
    double MaxFrequency() const { return m_points.empty() ? 0.0 : m_points.back().frequency; }
    /// The frequencies strictly between the two.
    std::set<double> GetBasePoints(double from, double to) const;
    /// The value, or the minimum, at a frequency: that of \a points (rising), by default the own.
    /// Linear between two points, 0 outside; on a point always its value.
    double GetKFactor4Frequency(double frequency, const std::vector<KF> *points = nullptr,
                                bool useMax = true) const;
    /// The mean over frequency; 0 without a point.
    double GetMidValue() const;

    // How it is drawn. Offsets in dB.
    double GetMaxOffset() const { return m_maxOffset; }
    void SetMaxOffset(double offset) { m_maxOffset = offset; }
    double GetMinOffset() const { return m_minOffset; }
    void SetMinOffset(double offset) { m_minOffset = offset; }
    int GetReducedFrame() const { return m_reducedFrame; }
    /// The curve has a second line, of the minima.
    bool GetUseMin() const { return m_useMin; }
    void SetUseMin(bool use) { m_useMin = use; }
    bool GetUseSmooth() const { return m_useSmooth; }
    void SetUseSmooth(bool use) { m_useSmooth = use; }

    // Exchange; docs/lists.md tells the forms.
    /// 0, or -1 with nothing changed when the file can't be opened. Lines that don't read are
    /// skipped, and lines with a minimum, too: a curve with minima comes back empty.
    int LoadFromFile(const QString &fileName);
    /// The same for a text; always true.
    bool LoadFromCSVString(const QString &text);
    /// The text that SaveToFile writes: frequencies in MHz, the offsets inside the values.
    QString ToCSVString() const;
    /// 0, or -1 with nothing changed and an old file as it was. Afterwards the curve is as saved:
    /// without offsets.
    int SaveToFile(const QString &fileName);
    /// n frequencies, n values and, on demand, n minima.
    std::vector<double> toVector() const { return toVector(m_useMin); }
    std::vector<double> toVector(bool withMin) const;
    /// \throws KRException when \a data isn't whole, with nothing changed
    void fromVector(const std::vector<double> &data, bool withMin);

    bool operator==(const KFactor &other) const;

private:
    template <typename T>
    friend std::string Kelm::toStandardString(const T &);
    template <typename T>
    friend T Kelm::fromCharStream(const char **);

    void readLine(const QString &line, std::vector<KF> &points);

    QString m_transducerName;
    QString m_description;
    QString m_fileName;
    std::vector<KF> m_points;
    double m_maxOffset = 0.0;
    double m_minOffset = 0.0;
    int m_reducedFrame = 1;
    bool m_useMin = false;
    bool m_useSmooth = false;
};

/// The text of a curve is that of its file.
class SPECTREE_EXPORT FormatKFactor {
public:
    static QString GetString(const KFactor &curve);
    static KFactor GetValue(const QString &text);
};

template <>
struct ScalarKind<KFactor> {
    static constexpr ValueType kType = VTYPE_None;
    static constexpr const char *kTypeName = "KFactorPure - do NOT use, use ValueKFactor instead!";
};

} // namespace values

SPECTREE_DECLARE_RECORD_IMAGE(values::KF)
SPECTREE_DECLARE_RECORD(values::KFactor, values::FormatKFactor)

namespace values {

extern template class SPECTREE_EXPORT CommandSetValue<KFactor>;
extern template class SPECTREE_EXPORT Value<KFactor>;

} // namespace values
