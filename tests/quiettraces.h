#pragma once

#include "platform/base/errorhandler.h"

/// Keeps traces that a test provokes out of its output, until its end: \a mask says which stay.
class QuietTraces {
public:
    explicit QuietTraces(unsigned mask = 0) { ErrorHandler::Instance().SetTraceMask(mask); }
    ~QuietTraces() { ErrorHandler::Instance().SetTraceMask(m_before); }
    QuietTraces(const QuietTraces &) = delete;
    QuietTraces &operator=(const QuietTraces &) = delete;

private:
    unsigned m_before = ErrorHandler::Instance().GetTraceMask();
};
