#include "valueclasses/lifewatch.h"

#include <utility>

namespace values {

namespace {
// The model spares the lookup that a shared library otherwise makes for each access.
thread_local LifeWatch *newest __attribute__((tls_model("initial-exec"))) = nullptr;
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
    m_next = newest;
    m_at = &newest;
    if (m_next != nullptr)
        m_next->m_at = &m_next;
    newest = this;
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
    for (LifeWatch *watch = newest; watch != nullptr;) {
        LifeWatch *const next = watch->m_next;
        if (watch->m_subject == subject)
            watch->end();
        watch = next;
    }
}

} // namespace values
