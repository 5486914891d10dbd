// The arrow from the fast value map into the scan buffer: it runs against the floors, so it stands
// behind an interface of the lower one and is put in place when the library is loaded.
#include "scanbuffer/scanbufferdatasource.h"
#include "valueclasses/mapping/realtimebuffer.h"

namespace sbs {

namespace {

template <typename Y, typename YHandler>
class FastValueMapBuffer final : public values::IRealTimeBuffer<Y, YHandler> {
public:
    std::shared_ptr<ScanBuffer<Y, YHandler>> GetScanBuffer() const override { return m_buffer; }
    void endService() override { m_source.reset(); }
    std::string GetName() const override
    {
        return m_source != nullptr ? m_source->getServerEndpoint().toStdString() : std::string();
    }
    void setChannelRangeDefinition(const values::ChannelRangeDefinition &definition) override
    {
        m_buffer->setChannelRangeDefinition(definition);
    }
    void setMaximumSizeInBytes(std::uint64_t bytes) override
    {
        m_buffer->setMaximumSizeInBytes(bytes);
    }
    void addTimeStamp(KRTimeStamp time) override { m_buffer->addTimeStamp(time); }
    void addSpectralData(std::span<const values::SpectralDataPiece<Y>> pieces) override
    {
        m_buffer->addSpectralData(pieces);
    }
    void endOfScan() override { m_buffer->endOfScan(); }
    void endOfScan(KRTimeStamp time) override { m_buffer->endOfScan(time); }
    void setKeepScanDataAfterEndOfScan(bool keep) override
    {
        m_buffer->setKeepScanDataAfterEndOfScan(keep);
    }
    void setClearScanData(bool clearData) override { m_buffer->setClearScanData(clearData); }
    void setKeepNoOverwriteWFLines(bool keep) override
    {
        m_buffer->setKeepNoOverwriteWFLines(keep);
    }
    void setAvoidSettingMaxValueDuringScan(bool avoid) override
    {
        m_buffer->setAvoidSettingMaxValueDuringScan(avoid);
    }

private:
    std::unique_ptr<ScanBufferDataSource<Y, YHandler>> m_source =
        std::make_unique<ScanBufferDataSource<Y, YHandler>>();
    std::shared_ptr<ScanBuffer<Y, YHandler>> m_buffer = m_source->GetScanBuffer();
};

template <typename Y, typename YHandler>
std::unique_ptr<values::IRealTimeBuffer<Y, YHandler>> createBuffer()
{
    return std::make_unique<FastValueMapBuffer<Y, YHandler>>();
}

const bool kRegistered = [] {
#define SPECTREE_REGISTER(id, Y, Handler)                                                          \
    values::RealTimeBufferFactory<Y, Handler>::SetCreator(createBuffer<Y, Handler>);
    SPECTREE_FOR_EACH_DATA_SOURCE(SPECTREE_REGISTER)
#undef SPECTREE_REGISTER
    return true;
}();

} // namespace

} // namespace sbs
