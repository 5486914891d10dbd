#include "valueclasses/records/gsmresult.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::GSMResult, values::GSMResultFormat, .name = "GSMResult",
                       .separator = ';')
SPECTREE_DEFINE_RECORD_IMAGE(values::BaseStation)

namespace values {

namespace {
constexpr Record::Layout kLayout{.name = "BaseStation", .separator = ';', .closed = true};
}

QString BaseStationFormat::GetString(const BaseStation &record)
{
    QString text =
        QStringLiteral("%1;%2;%3;").arg(record.arfcn).arg(record.bsic).arg(record.cellId);
    for (const int channel : record.GetTCH())
        text += QString::number(channel) + QLatin1Char(';');
    return text;
}

BaseStation BaseStationFormat::GetValue(const QString &text)
{
    const int count = std::max(3, text.count(QLatin1Char(kLayout.separator)));
    const QStringList fields = Record::split(text, kLayout, count, -1);
    const auto number = [&](int field) { return Record::parse<int>(fields[field], kLayout); };
    BaseStation record;
    record.arfcn = number(0);
    record.bsic = number(1);
    record.cellId = number(2);
    for (int field = 3; field < count; ++field)
        record.AddTCH(number(field));
    return record;
}

} // namespace values
