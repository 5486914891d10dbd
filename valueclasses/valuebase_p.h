#pragma once

#include "valueclasses/valuebase.h"

#include <cstdint>

namespace values {

/// What most values never have.
struct ValueBase::Rare {
    /// The end-command that a StartTransaction placed for undo, and the depth at which it did.
    struct OpenBracket {
        int depth;
        std::uint64_t bracket;
    };

    std::unique_ptr<Kelm::ObjectTimer> timer; // only while the period isn't 0
    unsigned int updateTimerTime = 0;
    int recordingCount = 0;
    int transmissionCount = 0;
    bool recordingSuspended = false;
    bool transmissionSuspended = false;
    CommandList commandList;
    CommandList commandListForTransmission;
    IObserver *transactionSource = nullptr; // of the outermost StartTransaction
    std::vector<OpenBracket> openBrackets;
    std::vector<IUndoManager *> formerUndoManagers; // that were given commands of this value
    std::string translationNamespace = "VdStr";
    QString lastCompletePathName;
    std::function<void(ValueBase *)> notifyDeleteFn;
};

} // namespace values
