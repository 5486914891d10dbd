#include "valueclasses/valuetransaction.h"

#include "platform/base/errorhandler.h"

#include <algorithm>
#include <utility>

namespace values {

ValueTransaction::ValueTransaction(ISupportTransaction &target, const IObserver *source)
    : ValueTransaction(target, {}, source)
{
}

ValueTransaction::ValueTransaction(ISupportTransaction &target, TChangeCode code,
                                   const IObserver *source)
    : ValueTransaction(target, {code}, source)
{
}

ValueTransaction::ValueTransaction(ISupportTransaction &target,
                                   std::initializer_list<TChangeCode> codes,
                                   const IObserver *source)
    : m_target(&target), m_source(source), m_codes(codes)
{
    while (m_codes.size() < 2)
        m_codes.push_back(CC_NONE);
    target.StartTransaction(const_cast<IObserver *>(m_source));
}

ValueTransaction::ValueTransaction(ValueTransaction &&other) noexcept
    : m_target(std::move(other.m_target)), m_source(std::exchange(other.m_source, nullptr)),
      m_codes(std::exchange(other.m_codes, {}))
{
}

ValueTransaction &ValueTransaction::operator=(ValueTransaction &&other)
{
    if (this == &other)
        return *this;
    close();
    m_target = std::move(other.m_target);
    m_source = std::exchange(other.m_source, nullptr);
    m_codes = std::exchange(other.m_codes, {});
    return *this;
}

ValueTransaction::~ValueTransaction()
{
    try {
        close();
    } catch (const std::exception &error) {
        SPECTREE_TRACE(TraceWarnings, QStringLiteral("The end of a transaction failed: %1")
                                          .arg(QString::fromUtf8(error.what())));
    }
}

void ValueTransaction::AddChangeCode(TChangeCode code)
{
    int free = m_codes.size();
    while (free > 0 && m_codes[free - 1] == CC_NONE)
        --free;
    SetChangeCode(code, free);
}

void ValueTransaction::SetChangeCode(TChangeCode code, int index)
{
    if (index < 0)
        return;
    while (m_codes.size() <= index)
        m_codes.push_back(CC_NONE);
    m_codes[index] = code;
}

TChangeCode ValueTransaction::GetChangeCode(int index) const
{
    return m_codes.value(index, CC_NONE);
}

void ValueTransaction::Cancel() { m_codes.fill(CC_NONE); }

bool ValueTransaction::IsCanceled() const { return m_codes.count(CC_NONE) == m_codes.size(); }

void ValueTransaction::close()
{
    const LifeWatch target = std::move(m_target);
    auto *source = const_cast<IObserver *>(std::exchange(m_source, nullptr));
    const QVector<TChangeCode> codes = std::exchange(m_codes, {});
    if (target.IsGone() || codes.isEmpty())
        return;
    const auto isCode = [](TChangeCode code) { return code != CC_NONE; };
    const auto first = std::find_if(codes.begin(), codes.end(), isCode);
    target.Subject()->EndTransaction(first != codes.end() ? *first : CC_NONE, source);
    if (first == codes.end() || std::none_of(first + 1, codes.end(), isCode))
        return;
    auto *const observable = dynamic_cast<Observable *>(target.Subject());
    for (auto code = first + 1; observable != nullptr && code != codes.end(); ++code)
        if (isCode(*code) && !target.IsGone())
            observable->NotifyObservers(*code, source);
}

} // namespace values
