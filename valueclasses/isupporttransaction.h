#pragma once

#include "valueclasses/changecode.h"

namespace values {

/// Something whose notifications a transaction can hold back.
class SPECTREE_EXPORT ISupportTransaction {
public:
    virtual ~ISupportTransaction();
    virtual void StartTransaction(IObserver *source) = 0;
    /// The outermost end notifies with its \a code; CC_NONE notifies nobody.
    virtual void EndTransaction(TChangeCode code, IObserver *source) = 0;
    virtual bool IsTransactionActive() const = 0;
};

} // namespace values
