#include "valueclasses/lifewatch.h"

#include <array>
#include <cstdint>
#include <utility>

namespace values {

namespace {
// The thread's watches, the newest first, in several lists: a value that goes walks its own only.
// The model spares the lookup that a shared library otherwise makes for each access; its room is
// scarce where the library is loaded late, so the lists are few.
constexpr int kListBits = 4;
thread_local std::array<LifeWatch *, 1U << kListBits> newest
    __attribute__((tls_model("initial-exec"))) = {};

/// The head of the list that holds the watches of \a subject.
LifeWatch *&newestOf(const ISupportTransaction *subject)
{
    // Addresses are multiples of a size: the product brings their differences into the top bits.
    const auto mixed =
        std::uint64_t(reinterpret_cast<std::uintptr_t>(subject)) * 0x9E3779B97F4A7C15U;
    return newest[std::size_t(mixed >> (64 - kListBits))];
}
} // namespace

ISupportTransaction::~ISupportTransaction() { LifeWatch::tellDestroyed(this); }

LifeWatch::LifeWatch(ISupportTransaction *subject) { begin(subject); }

LifeWatch::LifeWatch(LifeWatch &&other) noexcept { *this = std::move(other); }

LifeWatch &LifeWatch::operator=(LifeWatch &&other) noexcept
{
    if (this == &other)
        return *this;
    end();
    begin(other.m_subject);
    other.end();
    return *this;
}

void LifeWatch::begin(ISupportTransaction *subject)
{
    if (subject == nullptr)
        return;
    m_subject = subject;
    LifeWatch *&first = newestOf(subject);
    m_next = first;
    m_at = &first;
    if (m_next != nullptr)
        m_next->m_at = &m_next;
    first = this;
}

void LifeWatch::end()
{
    if (m_subject == nullptr)
        return;
    m_subject = nullptr;
    *m_at = m_next;
    if (m_next != nullptr)
        m_next->m_at = m_at;
}

void LifeWatch::tellDestroyed(const ISupportTransaction *subject)
{
    for (LifeWatch *watch = newestOf(subject); watch != nullptr;) {
        LifeWatch *const next = watch->m_next;
        if (watch->m_subject == subject)
            watch->end();
        watch = next;
    }
}

} // namespace values
