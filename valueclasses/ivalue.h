#pragma once

#include "valueclasses/changecode.h"
#include "valueclasses/commands/icommand.h"
#include "valueclasses/valuetype.h"

#include <memory>
#include <string>
#include <vector>

namespace values {

class CommandListOptimizer;
class ITreeItem;
class ValueBase;

/// What every value offers, whatever it holds. ValueBase tells the rules.
class SPECTREE_EXPORT IValue {
public:
    virtual ~IValue() = default;
    virtual void SetStringValue(QString text, IObserver *source) = 0;
    virtual QString GetStringValue() const = 0;
    virtual TValueState GetState() const = 0;
    virtual void SetState(TValueState state, IObserver *source) = 0;
    virtual void HasChanged(TChangeCode code, IObserver *source) = 0;
    virtual std::string GetCommandStringForTransmission(unsigned int mode) = 0;
    virtual void SetCommandString(const std::string &commands,
                                  std::vector<std::unique_ptr<KELM::ICommand>> &out,
                                  IObserver *source, int mode) = 0;
    virtual void SetCommandString(const std::string &commands, IObserver *source, int mode) = 0;
    virtual ValueType GetType() const = 0;
    virtual QString GetTypeName() const = 0;
    /// Takes over what \a other holds, without undo. Of lists and vectors the change is recorded
    /// and told; the others tell nobody. \throws KRException for another kind.
    virtual void Assign(const ValueBase &other) = 0;
    virtual bool Compare(const ValueBase *other) const = 0;
};

/// Something that a tree item looks after; the item isn't owned.
class SPECTREE_EXPORT IDeleteSubject {
public:
    virtual ~IDeleteSubject() = default;
    virtual void SetDeleteObserver(ITreeItem *item) = 0;
    virtual ITreeItem *GetDeleteObserver() const = 0;
};

/// A value that can be asked to bring an optimizer's list up to date.
class SPECTREE_EXPORT IOptimizeTrigger {
public:
    virtual ~IOptimizeTrigger() = default;
    virtual void UpdateOptimizersCommandList(std::shared_ptr<CommandListOptimizer> &optimizer) = 0;
    virtual void PreWorkOptimizersCommandList(std::shared_ptr<CommandListOptimizer> &optimizer) = 0;
};

} // namespace values
