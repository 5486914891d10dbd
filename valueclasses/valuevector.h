#pragma once

#include "valueclasses/commands/fieldcommand.h"

#include <vector>

namespace values {

/// A sequence that is replaced as a whole. T is the element, F its text format, S its form inside a
/// command. docs/lists.md tells the kinds and their forms.
///
/// A change goes the road of every setter (ValueBase) without a test for equality. A command holds
/// at most 65535 elements, and a vector no more: a longer one is refused.
///
/// Threads: as ValueBase.
/// Errors:  KRException, with nothing changed.
template <typename T, typename F = typename Detail::DefaultFormat<T>::type,
          typename S = StreamFormat<T, F>>
class SPECTREE_EXPORT ValueVector : public ValueBase {
public:
    using Element = T;
    using Format = F;

    ValueVector() = default;
    explicit ValueVector(QString name, TValueState state = VS_NORMAL);
    /// Both copy the base and the elements, and tell nobody.
    ValueVector(const ValueVector &other) = default;
    ValueVector &operator=(const ValueVector &other) = default;

    /// Code CC_VALUE. \throws KRException "vector<T> too long"
    void SetValue(const std::vector<T> &items, IObserver *source);
    const std::vector<T> &GetValue() const { return m_items; }
    /// Recorded, but not notified: observers learn of it through the commands of a later change.
    void Clear(IObserver *source);
    std::size_t Size() const { return m_items.size(); }
    bool operator==(const ValueVector &other) const { return ValueVector::Compare(&other); }

    /// One element a line; the first empty line ends the text. Records no command but the change.
    /// \throws KRException "vector<T> too long"
    void SetStringValue(QString text, IObserver *source) override;
    /// Each element's text and " - ", for a reader's eye: SetStringValue doesn't read it.
    QString GetStringValue() const override;
    ValueType GetType() const override;
    QString GetTypeName() const override;
    /// As operator=; records the elements and ends with CC_VALUE. Without undo. \throws
    /// KRException for a value of another class
    void Assign(const ValueBase &other) override;
    /// Class, name and elements.
    bool Compare(const ValueBase *other) const override;

    /// The whole vector as a field.
    class WholeForm;
    using CommandSetValue = FieldCommand<"ValueVector::CommandSetValue", 20, &ValueVector::SetValue,
                                         CommandFieldOf<std::vector<T>, WholeForm>>;
    using CommandClear = FieldCommand<"ValueVector::CommandClear", 22, &ValueVector::Clear>;

protected:
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

private:
    void readItems(std::vector<T> items, IObserver *source);
    void replaceItems(std::vector<T> items, IObserver *source);
    [[nodiscard]] bool undoToPresent(); // as AddUndo

    std::vector<T> m_items;
};

/// Type number and registered name of a vector kind: `kType` and `kTypeName`.
template <typename T, typename F>
struct VectorKind;

} // namespace values
