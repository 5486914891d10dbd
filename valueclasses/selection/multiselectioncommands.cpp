#include "valueclasses/selection/multiselectioncommands.h"

#include "platform/base/bytes.h"
#include "valueclasses/commands/commandfield_p.h"
#include "valueclasses/commands/streamformat.h"

namespace values {

bool isEmptySelectionFlag(const char *command, int mode)
{
    const std::string_view id = commandField(command);
    if (Kelm::bytesLeft(command) <= id.size())
        return false;
    const char *const field = command + id.size() + 1;
    if (isTextMode(mode)) {
        const std::string_view text(field, std::size_t(Kelm::findByte(field, ';') - field));
        return text == "true" || text == "false";
    }
    const std::size_t left = Kelm::bytesLeft(field);
    // A text of 15 104 characters begins with 0 and ";", too, but a zero byte follows.
    return left >= 2 && (field[0] == 0 || field[0] == 1) && field[1] == ';' &&
           (left == 2 || field[2] == ';' || (field[2] >= '0' && field[2] <= '9'));
}

CommandFlagAt::CommandFlagAt(int id, IMultiSelection *selection, unsigned int index, bool flag,
                             IObserver *source)
    : CommandOnMultiSelection(id, selection, source), m_index(index), m_flag(flag)
{
}

CommandFlagAt::CommandFlagAt(int id, IMultiSelection *selection, const char **pos,
                             IObserver *source, int mode)
    : CommandOnMultiSelection(id, selection, pos, source),
      m_index(StreamFormat<unsigned int>::FromStream(pos, mode))
{
    EatSemicolon(pos, mode);
    m_flag = StreamFormat<bool>::FromStream(pos, mode);
    Kelm::readTerminator(pos, "ValueMultiSelection", "CommandFlagAt");
}

void CommandFlagAt::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<unsigned int>::Append(out, m_index, mode);
    AddSemicolon(out, mode);
    StreamFormat<bool>::Append(out, m_flag, mode);
    out += ';';
}

CommandSelectAt::CommandSelectAt(IMultiSelection *selection, unsigned int index, bool selected,
                                 IObserver *source)
    : CommandFlagAt(kId, selection, index, selected, source)
{
}

CommandSelectAt::CommandSelectAt(IMultiSelection *selection, const char **pos, IObserver *source,
                                 int mode)
    : CommandFlagAt(kId, selection, pos, source, mode)
{
}

void CommandSelectAt::Execute() { GetSelection().RestoreSelectedAt(m_index, m_flag, GetSource()); }

Command *CommandSelectAt::Clone() const { return new CommandSelectAt(*this); }

CommandEnableAt::CommandEnableAt(IMultiSelection *selection, unsigned int index, bool enabled,
                                 IObserver *source)
    : CommandFlagAt(kId, selection, index, enabled, source)
{
}

CommandEnableAt::CommandEnableAt(IMultiSelection *selection, const char **pos, IObserver *source,
                                 int mode)
    : CommandFlagAt(kId, selection, pos, source, mode)
{
}

void CommandEnableAt::Execute() { GetSelection().EnableAt(m_index, m_flag, GetSource()); }

Command *CommandEnableAt::Clone() const { return new CommandEnableAt(*this); }

CommandAllowEmptySelection::CommandAllowEmptySelection(IMultiSelection *selection, bool allow,
                                                       IObserver *source)
    : CommandOnMultiSelection(kId, selection, source), m_allow(allow)
{
}

CommandAllowEmptySelection::CommandAllowEmptySelection(IMultiSelection *selection, const char **pos,
                                                       IObserver *source, int mode)
    : CommandOnMultiSelection(kId, selection, pos, source),
      m_allow(StreamFormat<bool>::FromStream(pos, mode))
{
    Kelm::readTerminator(pos, "ValueMultiSelection", "CommandAllowEmptySelection");
}

void CommandAllowEmptySelection::Execute()
{
    GetSelection().SetAllowEmptySelection(m_allow, GetSource());
}

void CommandAllowEmptySelection::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<bool>::Append(out, m_allow, mode);
    out += ';';
}

Command *CommandAllowEmptySelection::Clone() const { return new CommandAllowEmptySelection(*this); }

CommandMapText::CommandMapText(int id, IMultiSelection *selection, QString text, IObserver *source)
    : CommandOnMultiSelection(id, selection, source), m_text(std::move(text))
{
}

CommandMapText::CommandMapText(int id, IMultiSelection *selection, const char **pos,
                               IObserver *source, int mode)
    : CommandOnMultiSelection(id, selection, pos, source),
      m_text(StreamFormat<QString>::FromStream(pos, mode))
{
    Kelm::readTerminator(pos, "ValueMultiSelection", "CommandMapText");
}

void CommandMapText::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<QString>::Append(out, m_text, mode);
    out += ';';
}

CommandMapEmptyText::CommandMapEmptyText(IMultiSelection *selection, QString text,
                                         IObserver *source)
    : CommandMapText(kId, selection, std::move(text), source)
{
}

CommandMapEmptyText::CommandMapEmptyText(IMultiSelection *selection, const char **pos,
                                         IObserver *source, int mode)
    : CommandMapText(kId, selection, pos, source, mode)
{
}

void CommandMapEmptyText::Execute() { GetSelection().SetEmptyText(m_text, GetSource()); }

Command *CommandMapEmptyText::Clone() const { return new CommandMapEmptyText(*this); }

CommandMapMultiSelectedText::CommandMapMultiSelectedText(IMultiSelection *selection, QString text,
                                                         IObserver *source)
    : CommandMapText(kId, selection, std::move(text), source)
{
}

CommandMapMultiSelectedText::CommandMapMultiSelectedText(IMultiSelection *selection,
                                                         const char **pos, IObserver *source,
                                                         int mode)
    : CommandMapText(kId, selection, pos, source, mode)
{
}

void CommandMapMultiSelectedText::Execute()
{
    GetSelection().SetMultiSelectedText(m_text, GetSource());
}

Command *CommandMapMultiSelectedText::Clone() const
{
    return new CommandMapMultiSelectedText(*this);
}

Command *createMultiSelectionCommand(int id, IMultiSelection *selection, const char **pos,
                                     IObserver *source, int mode)
{
    switch (id) {
    case CommandSelectAt::kId:
        return new CommandSelectAt(selection, pos, source, mode);
    case CommandEnableAt::kId:
        return new CommandEnableAt(selection, pos, source, mode);
    case CommandAllowEmptySelection::kId:
        if (isEmptySelectionFlag(*pos, mode))
            return new CommandAllowEmptySelection(selection, pos, source, mode);
        return new CommandMapEmptyText(selection, pos, source, mode);
    case CommandMapMultiSelectedText::kId:
        return new CommandMapMultiSelectedText(selection, pos, source, mode);
    default:
        return nullptr;
    }
}

} // namespace values
