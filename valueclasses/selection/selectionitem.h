#pragma once

#include "platform/base/types.h"
#include "valueclasses/changecode.h"

#include <QString>

namespace values {

class ValueSelection;

/// One item of a selection: a name to show, and a number and a key by which programs know it.
class SPECTREE_EXPORT SelectionItem {
public:
    SelectionItem() = default;
    SelectionItem(const QString &name, double value, Kelm::Long key)
        : m_name(name), m_value(value), m_key(key)
    {
    }

    const QString &GetName() const { return m_name; }
    double GetValue() const { return m_value; }
    Kelm::Long GetKey() const { return m_key; }
    TValueState GetState() const { return m_state; }
    /// Both are plain stores: neither recorded nor notified, also for an item of a selection. The
    /// state stays in the process; views show a disabled item greyed.
    void SetKey(Kelm::Long key) { m_key = key; }
    void SetState(TValueState state) { m_state = state; }

    /// Two values that aren't numbers are equal.
    bool operator==(const SelectionItem &other) const;

private:
    QString m_name;
    double m_value = 0.0;
    Kelm::Long m_key;
    TValueState m_state = VS_NORMAL;
};

/// The declaration of one item, as descriptors of values hold it in static arrays.
class SPECTREE_EXPORT SelItemDesc {
public:
    SelItemDesc(const wchar_t *name, double value, Kelm::Long key);
    SelItemDesc(QString name, double value, Kelm::Long key);

    const QString &GetName() const { return m_name; }
    double GetValue() const { return m_value; }
    Kelm::Long GetKey() const { return m_key; }

    /// Appends \a count declared items in one transaction, which notifies CC_ITEM_ADDED. Nothing
    /// for a count below 1.
    static void AddItems(const SelItemDesc *items, int count, ValueSelection *selection,
                         IObserver *source);

private:
    QString m_name;
    double m_value;
    Kelm::Long m_key;
};

} // namespace values
