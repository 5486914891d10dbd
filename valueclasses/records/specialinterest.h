#pragma once

#include "valueclasses/records/record.h"

#include <utility>

namespace values {

/// Who is interested in a file, and how much.
class SPECTREE_EXPORT SpecialInterest {
public:
    SpecialInterest() = default;
    SpecialInterest(int interest, QString guid, QString fileName)
        : m_interest(interest), m_guid(std::move(guid)), m_fileName(std::move(fileName))
    {
    }

    /// 0: none any more.
    int GetInterest() const { return m_interest; }
    void SetInterest(int interest) { m_interest = interest; }
    /// Of the one who asks.
    const QString &GetGUID() const { return m_guid; }
    const QString &GetFileName() const { return m_fileName; }

    bool operator==(const SpecialInterest &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.m_interest, record.m_guid, record.m_fileName);
    }

private:
    int m_interest = 0;
    QString m_guid;
    QString m_fileName;
};

/// A "#" in the GUID can't be printed; one in the file name can.
class SPECTREE_EXPORT FormatSpecialInterest {
public:
    static QString GetString(const SpecialInterest &record);
    static SpecialInterest GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::SpecialInterest, values::FormatSpecialInterest)
