#pragma once

#include "valueclasses/lifewatch.h"

#include <QVector>

#include <initializer_list>

namespace values {

/// Keeps one transaction open for as long as it lives.
///
/// The end notifies with the first code that isn't CC_NONE; the others follow, one notification
/// each, through the target's own NotifyObservers; what an observer throws at the destruction of a
/// guard is traced. A guard ends on its own thread; a target that
/// is destroyed there before leaves it empty, one that lives elsewhere must outlive it.
class SPECTREE_EXPORT ValueTransaction {
public:
    ValueTransaction() = default;
    ValueTransaction(ISupportTransaction &target, const IObserver *source);
    ValueTransaction(ISupportTransaction &target, TChangeCode code, const IObserver *source);
    ValueTransaction(ISupportTransaction &target, std::initializer_list<TChangeCode> codes,
                     const IObserver *source);
    ValueTransaction(ValueTransaction &&other) noexcept;
    ValueTransaction &operator=(ValueTransaction &&other);
    ~ValueTransaction();

    /// Writes behind the last code that isn't CC_NONE.
    void AddChangeCode(TChangeCode code);
    void SetChangeCode(TChangeCode code, int index);
    /// CC_NONE for a slot that doesn't exist.
    TChangeCode GetChangeCode(int index) const;
    /// The transaction will end without a notification.
    void Cancel();
    bool IsCanceled() const;
    /// False for an empty guard.
    bool IsValid() const { return !m_target.IsGone(); }

private:
    void close();

    LifeWatch m_target;
    const IObserver *m_source = nullptr;
    QVector<TChangeCode> m_codes;
};

} // namespace values
