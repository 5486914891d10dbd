// The bodies of itemmapcommands.h, for the files that instantiate maps.
#pragma once

#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/commands/streamformat.h"
#include "valueclasses/itemmaps/itemmapcommands.h"

namespace values {

template <typename T, typename F, typename A>
CommandMapSetAt<T, F, A>::CommandMapSetAt(ValueItemMapBase<T, F, A> *map, unsigned int key, T item,
                                          IObserver *source)
    : CommandOnValue(kId, map, source), m_key(key), m_item(std::move(item))
{
}

template <typename T, typename F, typename A>
CommandMapSetAt<T, F, A>::CommandMapSetAt(ValueItemMapBase<T, F, A> *map, const char **pos,
                                          IObserver *source, int mode)
    : CommandOnValue(kId, map, pos, source),
      m_key(StreamFormat<unsigned int>::FromStream(pos, mode))
{
    EatSemicolon(pos, mode);
    if (!F::fromCharStream(pos, m_item))
        throw KRException("Command string is not terminated with ';'", __FILE__, "CommandMapSetAt",
                          "CommandMapSetAt", __LINE__);
}

template <typename T, typename F, typename A>
void CommandMapSetAt<T, F, A>::Execute()
{
    static_cast<ValueItemMapBase<T, F, A> *>(GetValue())->SetAt(m_key, m_item, GetSource());
}

template <typename T, typename F, typename A>
void CommandMapSetAt<T, F, A>::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<unsigned int>::Append(out, m_key, mode);
    AddSemicolon(out, mode);
    out += F::toStandardString(m_item); // with the ";" that closes the command
}

template <typename T, typename F, typename A>
CommandMapEraseAt<T, F, A>::CommandMapEraseAt(ValueItemMapBase<T, F, A> *map, unsigned int key,
                                              IObserver *source)
    : CommandOnValue(kId, map, source), m_key(key)
{
}

template <typename T, typename F, typename A>
CommandMapEraseAt<T, F, A>::CommandMapEraseAt(ValueItemMapBase<T, F, A> *map, const char **pos,
                                              IObserver *source, int mode)
    : CommandOnValue(kId, map, pos, source),
      m_key(StreamFormat<unsigned int>::FromStream(pos, mode))
{
    Kelm::readTerminator(pos, "CommandMapEraseAt", "CommandMapEraseAt");
}

template <typename T, typename F, typename A>
void CommandMapEraseAt<T, F, A>::Execute()
{
    static_cast<ValueItemMapBase<T, F, A> *>(GetValue())->EraseAt(m_key, GetSource());
}

template <typename T, typename F, typename A>
void CommandMapEraseAt<T, F, A>::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<unsigned int>::Append(out, m_key, mode);
    out += ';';
}

template <typename T, typename F, typename A>
CommandMapClear<T, F, A>::CommandMapClear(ValueItemMapBase<T, F, A> *map, IObserver *source)
    : CommandOnValue(kId, map, source)
{
}

template <typename T, typename F, typename A>
CommandMapClear<T, F, A>::CommandMapClear(ValueItemMapBase<T, F, A> *map, const char **pos,
                                          IObserver *source)
    : CommandOnValue(kId, map, pos, source)
{
}

template <typename T, typename F, typename A>
void CommandMapClear<T, F, A>::Execute()
{
    static_cast<ValueItemMapBase<T, F, A> *>(GetValue())->Clear(GetSource());
}

} // namespace values
