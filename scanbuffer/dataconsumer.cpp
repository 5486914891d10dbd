#include "scanbuffer/dataconsumer.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/tracelimit.h"
#include "platform/transmission/consumerconnector.h"
#include "platform/transmission/consumergroup.h"
#include "scanbuffer/messages/mdata.h"

#include <exception>

namespace {

/// Nothing may pass through a slot into the event loop.
template <typename Handler>
void guarded(Adapter_Type type, Handler handle)
{
    try {
        handle();
    } catch (const std::exception &error) {
        SPECTREE_TRACE_LIMITED(
            TraceWarnings,
            QStringLiteral("A consumer of \"%1\" refused what came: %2")
                .arg(QString::fromUtf8(sbs::adapterName(type)), QString::fromUtf8(error.what())));
    }
}

} // namespace

DataConsumerQObject::DataConsumerQObject(DataConsumer &consumer) : m_consumer(consumer) {}
DataConsumerQObject::~DataConsumerQObject() = default;

void DataConsumerQObject::onDataReceived(QByteArray data)
{
    guarded(m_consumer.m_type, [&] {
        if (const auto message = MData::FromBinary(data.constData(), data.size()))
            m_consumer.handleData(*message);
    });
}

void DataConsumerQObject::onAdapterReady()
{
    guarded(m_consumer.m_type, [this] { m_consumer.handleAdapterReady(); });
}

DataConsumer::DataConsumer(Adapter_Type type)
    : m_type(type), m_qobject(std::make_unique<DataConsumerQObject>(*this))
{
}

DataConsumer::~DataConsumer() = default;

std::shared_ptr<zmq::context_t> DataConsumer::getContext()
{
    return sbs::ConsumerGroup::sharedContext();
}

void DataConsumer::registerAtGroup(sbs::ConsumerGroup &group)
{
    const QByteArray name = sbs::adapterName(m_type);
    if (name.isEmpty())
        throw KRException(QStringLiteral("No adapter kind has the number %1.").arg(int(m_type)),
                          __FILE__, "DataConsumer", "registerAtGroup", __LINE__);
    auto connector = std::make_unique<sbs::ConsumerConnector>(nullptr, name, group.getAddress(),
                                                              group.getContext());
    using sbs::ConsumerConnector;
    QObject::connect(connector.get(), &ConsumerConnector::signalMassdata, m_qobject.get(),
                     &DataConsumerQObject::onDataReceived);
    QObject::connect(connector.get(), &ConsumerConnector::signalStateUpdate, m_qobject.get(),
                     &DataConsumerQObject::onDataReceived);
    QObject::connect(connector.get(), &ConsumerConnector::signalAdapterReady, m_qobject.get(),
                     &DataConsumerQObject::onAdapterReady);
    connector->join(group);
    m_connector = std::move(connector);
}

void DataConsumer::sendCommandOverConnector(const QByteArray &command)
{
    if (m_connector)
        m_connector->sendCommand(command);
    else
        SPECTREE_TRACE_LIMITED(TraceWarnings,
                               QStringLiteral("A consumer without a group dropped its command"));
}

void DataConsumer::handleAdapterReady() {}
