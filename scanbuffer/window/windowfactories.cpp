#include "scanbuffer/window/windowfactories.h"

#include "scanbuffer/scanbuffer_connector_scanline.h"
#include "scanbuffer/scanbuffer_connector_statistics.h"
#include "scanbuffer/scanbuffer_connector_waterfall.h"
#include "scanbuffer/scanbuffer_connector_xrange.h"
#include "scanbuffer/scanbuffer_connector_yrange.h"

namespace sbs {

namespace {

template <typename Kind>
std::shared_ptr<DataSourceAdapter> make(const QByteArray &identity)
{
    return std::make_shared<Kind>(nullptr, identity);
}

struct Row {
    Adapter_Type type;
    std::shared_ptr<DataSourceAdapter> (*make)(const QByteArray &identity);
};

template <typename Y, typename YHandler>
constexpr Row kRows[] = {
    {AdapterType_XAxis, make<ScanBufferAdapter_XRange<Y, YHandler>>},
    {AdapterType_Curve, make<ScanBufferAdapter_ScanLine<Y, YHandler>>},
    {AdapterType_Waterfall, make<ScanBufferAdapter_Waterfall<Y, YHandler>>},
    {AdapterType_YRange, make<ScanBufferAdapter_YRange<Y, YHandler>>},
    {AdapterType_YRange2, make<ScanBufferAdapter_YRange<Y, YHandler>>},
    {AdapterType_YRangeA, make<ScanBufferAdapter_YRange<Y, YHandler>>},
    {AdapterType_YRangeE, make<ScanBufferAdapter_YRange<Y, YHandler>>},
    {AdapterType_Statistics, make<ScanBufferAdapter_Statistics<Y, YHandler>>},
};

} // namespace

template <typename Y, typename YHandler>
std::shared_ptr<Adapter> AdapterFactory<Y, YHandler>::create(const QByteArray &name,
                                                             const QByteArray &identity) const
{
    for (const Row &row : kRows<Y, YHandler>) {
        if (adapterName(row.type) != name)
            continue;
        // Kinds that share a class are made with the type of the class.
        const std::shared_ptr<DataSourceAdapter> adapter = row.make(identity);
        adapter->SetType(row.type);
        return adapter;
    }
    return nullptr;
}

#define SPECTREE_INSTANTIATE(Y, Handler) template class AdapterFactory<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_INSTANTIATE)
#undef SPECTREE_INSTANTIATE

} // namespace sbs
