#pragma once

#include "platform/base/instancecounter.h"
#include "valueclasses/changecode.h"
#include "valuetree/treeitem.h"

namespace values {

/// The leaf of a tree: it holds one value, whose name is its name.
///
/// It observes its value only while it has observers of its own, and hands the value's codes on,
/// skipping whoever caused the change.
/// Ownership: destroying the item destroys the value, unless that is auto-delete and somebody still
///            observes it. A value that dies first leaves a nameless item behind.
/// Threads:   the application thread; being destroyed on another one ends the process.
class SPECTREE_EXPORT ValueItem : public IObserver,
                                  public TreeItem,
                                  private Kelm::Counted<ValueItem> {
public:
    static constexpr const char *kInstanceName = "ValueItem";

    /// Takes \a value over, if there is one. \throws KRException when another item holds it.
    explicit ValueItem(ValueBase *value = nullptr);
    ~ValueItem() override;
    ValueItem *AsValueItem() override { return this; }
    /// Null when there is none.
    ValueBase *GetValue() const { return m_value; }

    // The value's own operations. Without a value they do nothing, and give nothing.
    void SetStringValue(QString text, IObserver *source);
    QString GetStringValue() const;
    TValueState GetState() const;
    void SetState(TValueState state, IObserver *source);
    void HasChanged(TChangeCode code, IObserver *source);
    std::string GetCommandStringForTransmission(unsigned int mode);
    void SetCommandString(const std::string &commands, IObserver *source, int mode);
    std::string GetObjectStateStringForTransmission(unsigned int mode) const;

    void AddObserver(IObserver *observer) override;
    void DeleteObserver(IObserver *observer) override;
    void DeleteObservers() override;
    void Update(Observable *subject, TChangeCode code) override;

    /// Renames the value. \throws KRException for an empty name.
    void SetName(const QString &name, IObserver *source, bool skipPathUpdate = false) override;
    void SetLastCompletePathName(bool recurse) override;
    const ValueDescriptor *GetValueDescriptor() const override;
    using TreeItem::SetAsStdString;
    using TreeItem::SetValueAsStdString;
    /// The form of the value.
    std::string GetAsStdString() const override { return GetValueAsStdString(); }
    void SetAsStdString(std::string_view text, IObserver *source) override;
    std::string GetValueAsStdString() const override;
    /// Makes a value where there is none, its state too. \throws KRException for another type.
    void SetValueAsStdString(std::string_view text, IObserver *source) override;
    void AddTreeString(std::string &out, int depth, int detail) const override;

    // By path: only an empty one leads anywhere.
    ValueBase *GetValue(QString path) const override;
    Node *GetNode(QString path) const override;
    ValueBase *CreateValue(QString path, const ValueBase &prototype) override;
    bool AddNode(const QString &path, Node *node) override;
    bool AddNode(const QString &path) override;
    /// False when the item has a value, or another item has this one.
    bool AddValue(QString path, ValueBase *value) override;
    /// Leaves the value, then destroys it; an auto-delete one goes with its last observer.
    bool DeleteValue(QString path) override;
    void SetAllValuesAutoDelete(bool on) override;

    void SubjectRenamed(IDeleteSubject *subject) override;
    void SubjectEnding(IDeleteSubject *subject) override;
    void NotifyDelete(IDeleteSubject *subject) override;

private:
    void adopt(ValueBase *value);
    void listen();
    void stopListening();
    void releaseValue();

    ValueBase *m_value = nullptr;
};

inline ValueItem *TreeItem::valueItem()
{
    return m_kind == Kind::ValueItem ? static_cast<ValueItem *>(this) : nullptr;
}

} // namespace values
