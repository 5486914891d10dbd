#pragma once

#include "platform/base/export.h"

#include <QString>

#include <functional>

/// The questions that only the user can answer; the application installs who asks them. Application
/// thread.
class SPECTREE_EXPORT UserQuestion {
public:
    enum Answer : int { Abort = 0, Continue = 1 };
    using Handler = std::function<Answer(const QString &question)>;

    static void SetHandler(Handler handler);
    /// Without a handler the question is traced, and the answer is Abort.
    static Answer Ask(const QString &question);
};
