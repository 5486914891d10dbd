#pragma once

#include "valueclasses/iundomanager.h"
#include "valueclasses/valuebase.h"

#include <cstdint>

/// The commands that every value understands. docs/commands.md tells their ids and forms.
namespace values {

/// A command that targets a value. The value and the source aren't owned and must outlive it.
class SPECTREE_EXPORT ValueBase::CommandOnValue : public Command {
public:
    CommandOnValue(int id, ValueBase *value, IObserver *source);
    /// Consumes the id field. \throws KRException when it is empty or not closed.
    CommandOnValue(int id, ValueBase *value, const char **pos, IObserver *source);

    /// Writes the id field.
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;
    /// On whose behalf the change is made, or null.
    IObserver *GetSource() const { return m_source; }
    ValueBase *GetValue() const { return m_value; }

protected:
    /// A separator inside a command: text mode only, nothing in any other.
    static void AddSemicolon(std::string &out, int mode);
    static void EatSemicolon(const char **pos, int mode);

private:
    ValueBase *m_value;
    IObserver *m_source;
};

/// Id 0.
class SPECTREE_EXPORT ValueBase::CommandHasChanged : public CommandOnValue {
public:
    static constexpr int kId = 0;
    CommandHasChanged(ValueBase *value, TChangeCode code, IObserver *source);
    CommandHasChanged(ValueBase *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    TChangeCode m_code;
};

/// Id 1.
class SPECTREE_EXPORT ValueBase::CommandSetState : public CommandOnValue {
public:
    static constexpr int kId = 1;
    CommandSetState(ValueBase *value, TValueState state, IObserver *source);
    CommandSetState(ValueBase *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    TValueState m_state;
};

/// Id 2. Stores the descriptor, without notification; a key that isn't known stores none.
class SPECTREE_EXPORT ValueBase::CommandSetValueDescriptor : public CommandOnValue {
public:
    static constexpr int kId = 2;
    CommandSetValueDescriptor(ValueBase *value, const ValueDescriptor *descriptor,
                              IObserver *source);
    CommandSetValueDescriptor(ValueBase *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    const ValueDescriptor *m_descriptor;
};

/// Id 3.
class SPECTREE_EXPORT ValueBase::CommandStartTransaction : public CommandOnValue {
public:
    static constexpr int kId = 3;
    CommandStartTransaction(ValueBase *value, IObserver *source);
    CommandStartTransaction(ValueBase *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    Command *Clone() const override;
};

/// Id 4.
class SPECTREE_EXPORT ValueBase::CommandEndTransaction : public CommandOnValue {
public:
    static constexpr int kId = 4;
    /// \a bracket numbers the StartTransaction that placed this command for undo; 0: none.
    CommandEndTransaction(ValueBase *value, TChangeCode code, IObserver *source,
                          std::uint64_t bracket = 0);
    CommandEndTransaction(ValueBase *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;
    TChangeCode GetChangeCode() const { return m_code; }
    std::uint64_t GetBracket() const { return m_bracket; }

private:
    TChangeCode m_code;
    std::uint64_t m_bracket = 0;
};

/// Id 5.
class SPECTREE_EXPORT ValueBase::CommandUpdateTimerTime : public CommandOnValue {
public:
    static constexpr int kId = 5;
    CommandUpdateTimerTime(ValueBase *value, unsigned int milliseconds, IObserver *source);
    CommandUpdateTimerTime(ValueBase *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    unsigned int m_milliseconds;
};

/// Id 7.
class SPECTREE_EXPORT ValueBase::CommandSetTranslationNamespace : public CommandOnValue {
public:
    static constexpr int kId = 7;
    CommandSetTranslationNamespace(ValueBase *value, std::string name, IObserver *source);
    CommandSetTranslationNamespace(ValueBase *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;
    /// Makes the same change to another value.
    virtual void ExecuteOn(ValueBase *value);

private:
    std::string m_name;
};

/// Finds the end-command that one StartTransaction of a value placed for undo.
class SPECTREE_EXPORT ValueBase::FindCommandEndTransactionPredicate : public CommandPredicate {
public:
    explicit FindCommandEndTransactionPredicate(std::uint64_t bracket) : m_bracket(bracket) {}
    bool operator()(const KELM::ICommand &command) const override;

private:
    std::uint64_t m_bracket;
};

} // namespace values
