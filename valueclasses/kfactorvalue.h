#pragma once

#include "valueclasses/kfactor.h"

namespace values {

/// A curve over frequency in the tree, with the operations of KFactor.
///
/// A change goes the road of ValueBase with code CC_VALUE, as one CommandSetValue (id 20) of the
/// whole curve; one that leaves the curve the same (KFactor::IsSame) is none. Undo restores all of
/// it; a command string carries what the stream form holds: the transducer's name stays, and an
/// equal curve in it changes nothing.
///
/// Threads: those of ValueBase. A change that had to be posted answers 0 or true.
/// Errors:  as KFactor. An argument that isn't finite is told before anything is posted; a result
///          that isn't is traced where it comes about.
class SPECTREE_EXPORT ValueKFactor : public KFactorPure {
public:
    ValueKFactor() = default;
    explicit ValueKFactor(QString name, TValueState state = VS_NORMAL);
    ValueKFactor(QString name, KFactor curve, TValueState state = VS_NORMAL);

    ValueType GetType() const override { return VTYPE_ValueKFactor; }
    QString GetTypeName() const override { return QStringLiteral("KFactor"); }
    void SetValue(KFactor curve, IObserver *source) override;
    bool Compare(const ValueBase *other) const override;
    bool operator==(const ValueKFactor &other) const { return ValueKFactor::Compare(&other); }
    /// The curve in place; GetValue gives a copy.
    const KFactor &GetCurve() const { return m_value; }

    const QString &GetTransducerName() const { return m_value.GetTransducerName(); }
    void SetTransducerName(const QString &name, IObserver *source);
    const QString &GetDescription() const { return m_value.GetDescription(); }
    void SetDescription(const QString &description, IObserver *source);
    const QString &GetFileName() const { return m_value.GetFileName(); }

    // Points
    void Add(double frequency, double value, double minimum, IObserver *source);
    void Add(const KF &point, IObserver *source);
    void Add(const std::vector<KF> &points, IObserver *source);
    void Set(const std::vector<KF> &points, IObserver *source);
    bool InsertAt(double frequency, IObserver *source);
    void Trim(IObserver *source);
    void Unique(IObserver *source);
    const std::vector<KF> &GetList() const { return m_value.GetList(); }
    bool valid() const { return m_value.valid(); }
    double MinFrequency() const { return m_value.MinFrequency(); }
    double MaxFrequency() const { return m_value.MaxFrequency(); }
    double NextFrequency(double frequency) const { return m_value.NextFrequency(frequency); }
    KFactor::Range GetXRange() const { return m_value.GetXRange(); }
    KFactor::Range GetYRange() const { return m_value.GetYRange(); }
    double GetMidValue() const { return m_value.GetMidValue(); }
    std::set<double> GetBasePoints(double from, double to) const
    {
        return m_value.GetBasePoints(from, to);
    }

    // Evaluation
    double GetKFactor4Frequency(double frequency, const std::vector<KF> *points = nullptr,
                                bool useMax = true) const
    {
        return m_value.GetKFactor4Frequency(frequency, points, useMax);
    }
    std::vector<double> GetCalculatedLineFor(const axisDefinition &axis, bool useMax) const
    {
        return m_value.GetCalculatedLineFor(axis, useMax);
    }
    std::vector<double> GetCalculatedLineFor(int fromKHz, int toKHz, int pixelCount,
                                             bool useMax) const
    {
        return m_value.GetCalculatedLineFor(fromKHz, toKHz, pixelCount, useMax);
    }
    const std::vector<double> &GetMaxPixelLineFor(const axisDefinition &axis)
    {
        return m_value.GetMaxPixelLineFor(axis);
    }
    const std::vector<double> &GetMinPixelLineFor(const axisDefinition &axis)
    {
        return m_value.GetMinPixelLineFor(axis);
    }
    void resetCalculatedCurves() { m_value.resetCalculatedCurves(); }
    QVector<QPointF> GetPolygonVector(bool useMax = true) const
    {
        return m_value.GetPolygonVector(useMax);
    }
    std::vector<int> GetPixOffsetVector(const axisDefinition &axis) const
    {
        return m_value.GetPixOffsetVector(axis);
    }

    // How it is drawn
    double GetMaxOffset() const { return m_value.GetMaxOffset(); }
    void SetMaxOffset(double offset, IObserver *source);
    double GetMinOffset() const { return m_value.GetMinOffset(); }
    void SetMinOffset(double offset, IObserver *source);
    bool GetUseMin() const { return m_value.GetUseMin(); }
    void SetUseMin(bool use, IObserver *source);
    bool GetUseSmooth() const { return m_value.GetUseSmooth(); }
    void SetUseSmooth(bool use, IObserver *source);

    // Reduced points
    int GetReducedFrame() const { return m_value.GetReducedFrame(); }
    void Reduce(int frame, IObserver *source);
    const std::vector<KF> &Reduced() const { return m_value.Reduced(); }
    bool insertReduced(int index, IObserver *source);
    bool removeReduced(int index, IObserver *source);
    bool setReduced(int index, int field, double value, IObserver *source);
    int GetReducedIndex(double frequency) const { return m_value.GetReducedIndex(frequency); }
    int ReducedChangeIndex() const { return m_value.ReducedChangeIndex(); }
    void ResetReducedChangeIndex(IObserver *source);

    // Exchange
    int LoadFromFile(const QString &fileName, IObserver *source);
    bool LoadFromCSVString(const QString &text, IObserver *source);
    int SaveToFile(const QString &fileName, IObserver *source);
    std::vector<double> toVector() const { return m_value.toVector(); }
    std::vector<double> toVector(bool withMin, bool withOffsets) const
    {
        return m_value.toVector(withMin, withOffsets);
    }
    void fromVector(const std::vector<double> &data, bool withMin, IObserver *source);

    // Arithmetic; the operators act for no observer.
    void Add(const KFactor &other, IObserver *source);
    void Subtract(const KFactor &other, IObserver *source);
    ValueKFactor &operator+=(const KFactor &other);
    ValueKFactor &operator-=(const KFactor &other);

protected:
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

private:
    void setRead(KFactor curve, IObserver *source);
    template <typename Edit>
    auto edit(IObserver *source, std::invoke_result_t<Edit, KFactor &> posted, Edit change)
        -> decltype(posted);
    template <typename Edit>
    void editAlways(IObserver *source, Edit change);
};

} // namespace values
