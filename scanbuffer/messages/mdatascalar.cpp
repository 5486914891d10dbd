#include "scanbuffer/messages/mdatascalar.h"

template <typename T>
MDataVector<T>::MDataVector(const char **cursor)
{
    const auto count = std::uint32_t(Kelm::readLittleEndian<std::uint64_t>(cursor));
    Kelm::requireBytes(*cursor, count, sizeof(T));
    m_values.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        m_values.push_back(Kelm::readLittleEndian<T>(cursor));
}

template <typename T>
char *MDataVector<T>::writePayload(char *destination) const
{
    destination = Kelm::putLittleEndian(destination, std::uint64_t(m_values.size()));
    for (const T value : m_values)
        destination = Kelm::putLittleEndian(destination, value);
    return destination;
}

#define SPECTREE_DEFINE_MESSAGE(...) template class __VA_ARGS__;
SPECTREE_FOR_EACH_SCALAR_MESSAGE(SPECTREE_DEFINE_MESSAGE)
#undef SPECTREE_DEFINE_MESSAGE
