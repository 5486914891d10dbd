#include "valueclasses/valuestream.h"

#include "platform/base/bytes.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/commands/commandtags.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace values {

namespace {

template <typename T>
void appendImage(std::string &out, const std::vector<T> &data)
{
    const std::size_t before = out.size();
    out.resize(before + data.size() * sizeof(T));
    char *to = out.data() + before;
    if constexpr (std::endian::native == std::endian::little) {
        if (!data.empty())
            std::memcpy(to, data.data(), data.size() * sizeof(T));
    } else {
        for (const T element : data)
            to = Kelm::putLittleEndian(to, element);
    }
}

/// \a count elements that stand at \a image.
template <typename T>
std::vector<T> fromImage(const char *image, std::size_t count)
{
    std::vector<T> data(count);
    if constexpr (std::endian::native == std::endian::little) {
        if (count != 0)
            std::memcpy(data.data(), image, count * sizeof(T));
    } else {
        for (T &element : data)
            element = Kelm::readLittleEndian<T>(&image);
    }
    return data;
}

template <typename T>
std::string toReadable(const std::vector<T> &data)
{
    std::string text;
    char digits[32]; // the longest shortest form of a double has 24 characters
    for (const T element : data) {
        if (!text.empty())
            text += ' ';
        text.append(digits, std::to_chars(digits, std::end(digits), element).ptr);
    }
    return text;
}

template <typename T>
std::vector<T> fromReadable(std::string_view text)
{
    std::vector<T> data;
    const char *pos = text.data(), *const end = pos + text.size();
    const auto skipBlanks = [&] { pos = std::find_if(pos, end, [](char c) { return c != ' '; }); };
    for (skipBlanks(); pos != end; skipBlanks()) {
        T element{};
        const auto [next, error] = std::from_chars(pos, end, element);
        if (error != std::errc() || (next != end && *next != ' '))
            throw KRException(
                QStringLiteral("The text is no list of numbers from here: %1")
                    .arg(QString::fromLatin1(pos, int(std::min<std::ptrdiff_t>(end - pos, 40)))),
                __FILE__, "valuestream", "SetStringValueReadable", __LINE__);
        data.push_back(element);
        pos = next;
    }
    return data;
}

template <typename T>
std::vector<T> readElements(const char **pos, int mode)
{
    if (isTextMode(mode)) {
        const char *const begin = *pos;
        *pos = Kelm::findByte(begin, ';');
        return fromReadable<T>({begin, std::size_t(*pos - begin)});
    }
    const auto count = Kelm::readLittleEndian<std::uint32_t>(pos);
    Kelm::requireBytes(*pos, count, sizeof(T));
    std::vector<T> data = fromImage<T>(*pos, count);
    *pos += count * sizeof(T);
    return data;
}

} // namespace

template <typename T>
void ValueStream<T>::SetValue(const T *data, unsigned int count, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, copy = std::vector<T>(data, data + count), source] {
            SetValue(copy.data(), unsigned(copy.size()), source);
        });
    if (CompareArrays(m_data.data(), unsigned(m_data.size()), data, count))
        return;
    StoreChanged(m_data, std::vector<T>(data, data + count), CC_VALUE, source,
                 [this](const std::vector<T> &state, IObserver *on, CommandUse) {
                     return new CommandSetValueStr<T>(this, state, on);
                 });
}

template <typename T>
std::unique_ptr<T[]> ValueStream<T>::GetValue(int &count) const
{
    count = int(m_data.size());
    if (m_data.empty())
        return nullptr;
    auto copy = std::make_unique_for_overwrite<T[]>(m_data.size());
    std::copy(m_data.begin(), m_data.end(), copy.get());
    return copy;
}

template <typename T>
const T *ValueStream<T>::GetReferenceToValue(int &count) const
{
    count = int(m_data.size());
    return m_data.empty() ? nullptr : m_data.data();
}

template <typename T>
bool ValueStream<T>::CompareArrays(const T *a, unsigned int countA, const T *b, unsigned int countB)
{
    return countA == countB && std::equal(a, a + countA, b);
}

template <typename T>
void ValueStream<T>::SetStringValue(QString text, IObserver *source)
{
    if (std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() > 0xFF; }))
        throw KRException(QStringLiteral("The text holds characters that are no bytes."), __FILE__,
                          "valuestream", "SetStringValue", __LINE__);
    const QByteArray image = text.toLatin1();
    if (std::size_t(image.size()) % sizeof(T) != 0)
        throw KRException(QStringLiteral("The %1 bytes do not hold whole elements of %2 bytes.")
                              .arg(image.size())
                              .arg(sizeof(T)),
                          __FILE__, "valuestream", "SetStringValue", __LINE__);
    const auto data = fromImage<T>(image.data(), std::size_t(image.size()) / sizeof(T));
    SetValue(data.data(), unsigned(data.size()), source);
}

template <typename T>
QString ValueStream<T>::GetStringValue() const
{
    std::string image;
    appendImage(image, m_data);
    return QString::fromLatin1(image.data(), int(image.size()));
}

template <typename T>
void ValueStream<T>::SetStringValueReadable(const QString &text, IObserver *source)
{
    const std::vector<T> data = fromReadable<T>(text.toStdString());
    SetValue(data.data(), unsigned(data.size()), source);
}

template <typename T>
QString ValueStream<T>::GetStringValueReadable() const
{
    return QString::fromStdString(toReadable(m_data));
}

template <typename T>
void ValueStream<T>::Assign(const ValueBase &other)
{
    const auto &same = CastForAssign<ValueStream>(other);
    if (PostAssignIfForeign(same))
        return;
    m_data = same.m_data;
    ValueBase::operator=(other); // last, for it may tell somebody who deletes this value
}

template <typename T>
bool ValueStream<T>::Compare(const ValueBase *other) const
{
    const auto *same = dynamic_cast<const ValueStream *>(other);
    return same != nullptr &&
           (same == this || (ValueBase::Compare(other) && m_data == same->m_data));
}

template <typename T>
void ValueStream<T>::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandSetValueStr<T>(this, m_data, nullptr).AddCommandString(out, int(mode));
}

template <typename T>
Command *ValueStream<T>::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    if (id == CommandSetValueStr<T>::kId)
        return new CommandSetValueStr<T>(this, pos, source, mode);
    return ValueBase::CreateNextCommand(id, pos, source, mode);
}

template <typename T>
CommandSetValueStr<T>::CommandSetValueStr(ValueStream<T> *value, std::vector<T> data,
                                          IObserver *source)
    : CommandOnValue(kId, value, source), m_data(std::move(data))
{
}

template <typename T>
CommandSetValueStr<T>::CommandSetValueStr(ValueStream<T> *value, const char **pos,
                                          IObserver *source, int mode)
    : CommandOnValue(kId, value, pos, source)
{
    constexpr const char *className = "valuestream", *functionName = "CommandSetValueStr";
    m_data = Detail::withCommandTags(className, functionName, [&] {
        std::vector<T> data = readElements<T>(pos, mode);
        Kelm::readTerminator(pos, className, functionName);
        return data;
    });
}

template <typename T>
void CommandSetValueStr<T>::Execute()
{
    static_cast<ValueStream<T> *>(GetValue())
        ->SetValue(m_data.data(), unsigned(m_data.size()), GetSource());
}

template <typename T>
void CommandSetValueStr<T>::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    if (isTextMode(mode)) {
        out += toReadable(m_data);
    } else {
        _Q_assert(mode == ModeRecording || isTaggedMode(mode), "iCommandOption == 1", __FILE__,
                  __LINE__);
        Kelm::appendLittleEndian(out, std::uint32_t(m_data.size()));
        appendImage(out, m_data);
    }
    out += ';';
}

template <typename T>
Command *CommandSetValueStr<T>::Clone() const
{
    return new CommandSetValueStr(*this);
}

#define SPECTREE_INSTANTIATE(T, FormatClass, Type, Name)                                           \
    template class CommandSetValueStr<T>;                                                          \
    template class ValueStream<T>;
SPECTREE_FOR_EACH_STREAM(SPECTREE_INSTANTIATE)

} // namespace values
