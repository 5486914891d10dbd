#pragma once

#include "platform/base/export.h"
#include "valueclasses/changecode.h"

#include <QString>

#include <vector>

namespace values {

class ValueBase;

/// A multi-selection, whatever its items hold beside a text. An index is the key of an item.
class SPECTREE_EXPORT IMultiSelection {
public:
    virtual ~IMultiSelection() = default;
    virtual ValueBase *GetValueBase() = 0;

    /// Notifies CC_SELECTION. False, with nothing changed, for an unknown index, and where the last
    /// selected item would go although an empty selection isn't allowed.
    virtual bool SelectAt(unsigned int index, bool selected, IObserver *source) = 0;
    /// SelectAt without the rule for the last item: undo and replay repeat what was allowed then.
    virtual bool RestoreSelectedAt(unsigned int index, bool selected, IObserver *source) = 0;
    /// Selects this item and deselects all others, in one transaction of code CC_SELECTION. False,
    /// with nothing changed, for an unknown index.
    virtual bool SelectOnlyAt(unsigned int index, IObserver *source) = 0;
    /// Notifies CC_SELECTION. A disabled item keeps its flag, and programs may still change it.
    virtual bool EnableAt(unsigned int index, bool enabled, IObserver *source) = 0;
    virtual bool IsSelectedAt(unsigned int index) const = 0;
    virtual bool IsEnabledAt(unsigned int index) const = 0;
    virtual QString GetTextAt(unsigned int index) const = 0;
    /// Rising.
    virtual std::vector<unsigned int> GetSelectedIndices() const = 0;

    /// True at first. These three notify CC_VALUE.
    virtual bool GetAllowEmptySelection() const = 0;
    virtual void SetAllowEmptySelection(bool allow, IObserver *source) = 0;
    /// What a view shows when nothing is selected.
    virtual const QString &GetEmptyText() const = 0;
    virtual void SetEmptyText(const QString &text, IObserver *source) = 0;
    /// What a view shows when more than one item is selected; empty for all of their texts.
    virtual const QString &GetMultiSelectedText() const = 0;
    virtual void SetMultiSelectedText(const QString &text, IObserver *source) = 0;
};

} // namespace values
