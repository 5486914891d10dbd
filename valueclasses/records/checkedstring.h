#pragma once

#include "valueclasses/records/record.h"

namespace values {

/// A text with a mark.
struct CheckedString {
    bool checked = false;
    QString text;

    bool operator==(const CheckedString &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.checked, record.text);
    }
};

class SPECTREE_EXPORT FormatCheckedString {
public:
    static QString GetString(const CheckedString &record);
    static CheckedString GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::CheckedString, values::FormatCheckedString)
