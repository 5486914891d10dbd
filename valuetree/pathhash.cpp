#include "valuetree/pathhash.h"

#include <algorithm>
#include <random>

namespace values {

namespace {

std::uint64_t draw()
{
    std::random_device chance;
    return std::uint64_t(chance()) << 32 | chance();
}

} // namespace

const std::uint64_t PathHash::s_key[4] = {draw(), draw(), draw(), draw()};

void PathHash::add(QStringView text)
{
    const char16_t *at = text.utf16();
    for (int left = int(text.size()); left > 0;) {
        const int taken = std::min(left, kBlock - m_count);
        std::copy_n(at, taken, m_pending + m_count);
        m_count += taken;
        at += taken;
        left -= taken;
        if (m_count == kBlock) {
            m_hash = fold(m_hash, m_pending);
            std::fill_n(m_pending, kBlock, u'\0');
            m_count = 0;
        }
    }
}

PathHash::Value PathHash::of(QStringView text)
{
    const char16_t *at = text.utf16();
    auto left = text.size();
    Value hash{0, 0};
    for (; left >= kBlock; left -= kBlock, at += kBlock)
        hash = fold(hash, at);
    char16_t last[kBlock] = {};
    std::copy_n(at, left, last);
    last[left] = kEnd;
    return fold(hash, last);
}

} // namespace values
