#include "apps/receiver/scansink.h"

#include "apps/common/failure.h"
#include "apps/receiver/samplewriter.h"
#include "platform/base/sync.h"
#include "scanbuffer/datasourceqobject.h"
#include "scanbuffer/idatasourceadapter.h"
#include "scanbuffer/scanbufferrepository.h"
#include "valueclasses/fastvaluemap.h"

namespace receiver {

using apps::Failure;

namespace {

values::ChannelRangeDefinition definitionOf(const Grid &grid)
{
    values::ChannelRangeDefinition definition;
    unsigned int firstId = 0;
    for (const Range &range : grid) {
        definition.AddRangeDefinition(firstId, range.count, range.firstCenter, range.step,
                                      QString());
        firstId += range.count;
    }
    return definition;
}

template <typename Y, typename YHandler>
class ValueMapSink final : public ScanSink {
public:
    explicit ValueMapSink(const Grid &grid) : m_map(QStringLiteral("SPECTRUM"))
    {
        m_map.SetChannelRangeDefinition(definitionOf(grid), 0);
        m_map.CreateRealTimeBuffer();
        m_source = sbs::ScanBufferRepository::instance().getSourceByEndpoint(
            QByteArray::fromStdString(m_map.GetRealTimeBufferName()));
        if (!m_source)
            throw Failure(Failure::Runtime,
                          QStringLiteral("The scan buffer service did not start."));
    }

    void store(const Scan &scan, KRTimeStamp time) override
    {
        writeSamples<YHandler>(scan, m_samples);
        m_map.SetTimeStamp(time);
        m_map.SetChannelValues(0, unsigned(m_samples.size()), m_samples.data());
        m_map.EndOfScan(time);
    }

    QByteArray endpoint() const override { return m_source->getServerEndpoint(); }

    void onWindow(std::function<void()> seen) override
    {
        const Kelm::QtGate gate; // another thread emits
        QObject::connect(
            m_source, &sbs::DataSourceQObject::signalAdapterCreated, m_source,
            [seen = std::move(seen)] { seen(); }, Qt::DirectConnection);
    }

private:
    values::FastValueMap<Y, YHandler> m_map;
    sbs::DataSourceQObject *m_source = nullptr; // belongs to the map
    std::vector<Y> m_samples;
};

} // namespace

std::unique_ptr<ScanSink> ScanSink::create(SampleType type, const Grid &grid)
{
#define SPECTREE_SINK_CASE(Y, Handler)                                                             \
    if constexpr (Handler::GetId() != values::ElevOverAziMinMaxHandler::GetId())                   \
        if (int(type) == Handler::GetId())                                                         \
            return std::make_unique<ValueMapSink<Y, Handler>>(grid);
    SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_SINK_CASE)
#undef SPECTREE_SINK_CASE
    throw Failure(Failure::Usage, QStringLiteral("--type %1 can't be served.").arg(int(type)));
}

} // namespace receiver
