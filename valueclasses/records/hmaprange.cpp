#include "valueclasses/records/hmaprange.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD_IMAGE(values::HMapRange)
SPECTREE_DEFINE_RECORD_IMAGE(values::HVMapRange)

namespace values {

namespace {

constexpr Record::Layout kHorizontal{.name = "HMapRange", .separator = ';'};
constexpr Record::Layout kBoth{.name = "HVMapRange", .separator = ';'};

template <typename T>
T parseRange(const QString &text, const Record::Layout &layout, int count)
{
    const QStringList tokens = text.split(QLatin1Char(layout.separator));
    for (int i = 0; i < count; ++i) {
        const QString sToken = tokens.value(i);
        _Q_assert(!sToken.isEmpty(), "! sToken.isEmpty()", "valueclasses/hmaprange", __LINE__);
        if (sToken.isEmpty())
            throw KRException(QStringLiteral("! sToken.isEmpty()"), __FILE__, layout.name,
                              "GetValue", __LINE__);
    }
    return Record::parseRecord<T>(text, layout);
}

} // namespace

QString FormatHMapRange::GetString(const HMapRange &record)
{
    return Record::print(record, kHorizontal);
}

HMapRange FormatHMapRange::GetValue(const QString &text)
{
    return parseRange<HMapRange>(text, kHorizontal, 2);
}

QString FormatHVMapRange::GetString(const HVMapRange &record)
{
    return Record::print(record, kBoth);
}

HVMapRange FormatHVMapRange::GetValue(const QString &text)
{
    return parseRange<HVMapRange>(text, kBoth, 3);
}

} // namespace values
