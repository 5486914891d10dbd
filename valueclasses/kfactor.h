#pragma once

#include "valueclasses/records/record.h"
#include "valueclasses/value.h"

#include <QPointF>
#include <QVector>

#include <limits>
#include <memory>
#include <set>
#include <utility>
#include <vector>

class axisDefinition;

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
/// It is drawn, and edited, by its reduced points: of each frame of neighbouring points the highest
/// one, and both ends. At first a frame is one point and they are the points themselves. Editing
/// them leaves the points alone until SaveToFile makes them the points.
///
/// Equality looks at what the stream form holds: not at the names of transducer and file, nor at
/// reduced points that were edited. IsSame looks at these, too.
/// Threads: one at a time.
/// Errors:  KRException for a number of a point, or an offset, that isn't finite, with nothing
///          changed.
class SPECTREE_EXPORT KFactor {
public:
    enum ReducedField : int { ReducedFrequency = 0, ReducedValue = 1, ReducedMinimum = 2 };
    using Range = std::pair<double, double>; ///< the lower limit first

    const QString &GetTransducerName() const { return m_transducerName; }
    void SetTransducerName(const QString &name) { m_transducerName = name; }
    const QString &GetDescription() const { return m_description; }
    void SetDescription(const QString &description) { m_description = description; }
    /// Of the file that holds just these points; empty after a change.
    const QString &GetFileName() const { return m_fileName; }
    /// For a curve that was kept elsewhere, behind its points.
    void RestoreFileName(const QString &fileName) { m_fileName = fileName; }

    // Points. A point at a new frequency puts offsets and reduced points back to their defaults.
    /// Where there is a point of that frequency, the larger value and the smaller minimum stay.
    void Add(double frequency, double value, double minimum = KF::kNoMinimum);
    void Add(const KF &point) { Add(std::vector<KF>{point}); }
    void Add(const std::vector<KF> &points);
    /// Replaces all.
    void Set(const std::vector<KF> &points);
    /// Adds a point on the curve: the correction at that frequency, and the minimum between two
    /// points that have one. False, with nothing changed, where there is a point already.
    bool InsertAt(double frequency);
    /// Drops points of value 0 at either end whose neighbour is 0, too: outside the curve the
    /// correction is 0 anyway.
    void Trim();
    /// Sorts, and merges points of one frequency. Every change of the points ends with it.
    void Unique();
    const std::vector<KF> &GetList() const { return m_points; }
    /// At least two points, not all at one frequency.
    bool valid() const { return MaxFrequency() > MinFrequency(); }
    /// In Hz; 0 without a point.
    double MinFrequency() const { return m_points.empty() ? 0.0 : m_points.front().frequency; }
    double MaxFrequency() const { return m_points.empty() ? 0.0 : m_points.back().frequency; }
    /// The frequency of the first point above \a frequency; 0 without one.
    double NextFrequency(double frequency) const;
    Range GetXRange() const { return {MinFrequency(), MaxFrequency()}; }
    /// Of all values as drawn, and of the minima where they are used; zeros without a point.
    Range GetYRange() const;
    /// The mean over frequency; 0 without a point.
    double GetMidValue() const;
    /// The frequencies strictly between the two.
    std::set<double> GetBasePoints(double from, double to) const;

    // Evaluation
    /// The value, or the minimum, at a frequency: that of \a points (rising), by default the own.
    /// Linear between two points, 0 outside; on a point always its value.
    double GetKFactor4Frequency(double frequency, const std::vector<KF> *points = nullptr,
                                bool useMax = true) const;
    /// The line as drawn, a value a pixel: the highest reduced point in the pixel, else the
    /// correction at its centre; with the minima the lowest. Smoothed, all by one spline instead,
    /// that of the minima through the points that have one.
    /// Empty for an axis that isn't valid.
    std::vector<double> GetCalculatedLineFor(const axisDefinition &axis, bool useMax) const;
    /// The same over \a pixelCount pixels (1 to 32767) between two frequencies in kHz.
    std::vector<double> GetCalculatedLineFor(int fromKHz, int toKHz, int pixelCount,
                                             bool useMax) const;
    /// GetCalculatedLineFor, kept until the curve or the axis is another one. The reference holds
    /// until then.
    const std::vector<double> &GetMaxPixelLineFor(const axisDefinition &axis);
    const std::vector<double> &GetMinPixelLineFor(const axisDefinition &axis);
    /// Drops the kept lines; every change does.
    void resetCalculatedCurves();
    /// The reduced points as drawn: Hz, and the value or the minimum with its offset.
    QVector<QPointF> GetPolygonVector(bool useMax = true) const;
    /// The pixels of the reduced points; -1 off the axis.
    std::vector<int> GetPixOffsetVector(const axisDefinition &axis) const;

    // How it is drawn. Offsets in dB.
    double GetMaxOffset() const { return m_maxOffset; }
    void SetMaxOffset(double offset);
    double GetMinOffset() const { return m_minOffset; }
    void SetMinOffset(double offset);
    /// The curve has a second line, of the minima.
    bool GetUseMin() const { return m_useMin; }
    void SetUseMin(bool use) { setDrawn(m_useMin, use); }
    /// Drawn by a spline.
    bool GetUseSmooth() const { return m_useSmooth; }
    void SetUseSmooth(bool use) { setDrawn(m_useSmooth, use); }

    // Reduced points
    int GetReducedFrame() const { return m_reducedFrame; }
    /// Makes the reduced points anew, of \a frame points each (at least 1); drops their changes.
    void Reduce(int frame);
    const std::vector<KF> &Reduced() const;
    /// A point halfway between that of \a index and the next one. Like the next two false, with
    /// nothing changed, for an index that isn't there.
    bool insertReduced(int index);
    bool removeReduced(int index);
    /// Sets a ReducedField; a frequency has to stay strictly between the neighbours.
    bool setReduced(int index, int field, double value);
    /// The edited points as an image, with the index that was changed last; empty for others.
    std::string GetEditsImage() const;
    /// Behind the points, which drop the edits. \throws KRException, with nothing changed, for an
    /// image that no editing leads to.
    void RestoreEdits(const std::string &image);
    /// The index of the reduced point nearest to a frequency; -1 without one.
    int GetReducedIndex(double frequency) const;
    /// The index that was changed last, -1 for none; behind the last point when that was removed.
    int ReducedChangeIndex() const { return m_reducedChangeIndex; }
    void ResetReducedChangeIndex() { m_reducedChangeIndex = -1; }

    // Exchange; docs/lists.md tells the forms.
    /// 0, or -1 with nothing changed when the file can't be read. Lines that don't read are
    /// skipped, and lines with a minimum, too: a curve with minima comes back empty.
    int LoadFromFile(const QString &fileName);
    /// The same for a text; always true.
    bool LoadFromCSVString(const QString &text);
    /// The text of a file: frequencies in MHz, the offsets inside the values.
    QString ToCSVString() const;
    /// 0, or -1 with nothing changed and an old file as it was; -1 also where a value with its
    /// offset is beyond any double. Afterwards the curve is as saved:
    /// its reduced points, if they were edited, and without offsets.
    int SaveToFile(const QString &fileName);
    /// n frequencies, n values and, where minima are used or asked for, n minima.
    std::vector<double> toVector() const { return toVector(m_useMin, false); }
    /// \a withOffsets adds the offsets to values and minima.
    std::vector<double> toVector(bool withMin, bool withOffsets) const;
    /// \throws KRException when \a data isn't whole, with nothing changed
    void fromVector(const std::vector<double> &data, bool withMin);

    // Arithmetic
    /// Adds the other's correction at each point, and points where only the other one has some. The
    /// names are joined by " + " or " - ". A curve that isn't valid becomes the other one.
    KFactor &operator+=(const KFactor &other);
    KFactor &operator-=(const KFactor &other);
    bool operator==(const KFactor &other) const;
    bool IsSame(const KFactor &other) const;

private:
    template <typename T>
    friend std::string Kelm::toStandardString(const T &);
    template <typename T>
    friend T Kelm::fromCharStream(const char **);
    friend class FormatKFactor;

    struct PixelLine;
    using KeptLine = std::shared_ptr<const PixelLine>; // copies of a curve share it

    template <typename T>
    void setDrawn(T &field, T value)
    {
        field = value;
        resetCalculatedCurves();
    }
    void AddInternal(const std::vector<KF> &points);
    void combine(const KFactor &other, double sign, const char *joint);
    void resetState();
    std::vector<KF> drawnPoints(bool useMax) const;
    std::vector<KF> &editReduced(int changed);
    const std::vector<double> &keptLine(KeptLine &kept, const axisDefinition &axis,
                                        bool useMax) const;
    bool readLine(const QString &line, std::vector<KF> &points);
    bool readText(const QString &text);

    QString m_transducerName;
    QString m_description;
    QString m_fileName;
    std::vector<KF> m_points;
    std::vector<KF> m_reduced; // empty while they are the points themselves
    bool m_reducedIsCurrent = true;
    double m_maxOffset = 0.0;
    double m_minOffset = 0.0;
    int m_reducedFrame = 1;
    int m_reducedChangeIndex = -1;
    bool m_useMin = false;
    bool m_useSmooth = false;
    KeptLine m_maxLine, m_minLine;
};

/// The text of a curve is that of its file.
class SPECTREE_EXPORT FormatKFactor {
public:
    static QString GetString(const KFactor &curve);
    /// \throws KRException for a text, not an empty one, with neither a name nor a point
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
/// What ValueKFactor stands on, registered for trees that hold it.
using KFactorPure = Value<KFactor>;

} // namespace values
