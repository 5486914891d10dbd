#pragma once

#include "platform/base/export.h"
#include "scanbuffer/adaptertype.h"

#include <QByteArray>
#include <QObject>

#include <memory>

class DataConsumer;
class MData;

namespace sbs {
class ConsumerConnector;
class ConsumerGroup;
} // namespace sbs

namespace zmq {
class context_t;
}

/// The signal and slot side of a DataConsumer.
class SPECTREE_EXPORT DataConsumerQObject : public QObject {
    Q_OBJECT

public:
    explicit DataConsumerQObject(DataConsumer &consumer);
    ~DataConsumerQObject() override;

public Q_SLOTS:
    /// Parses the message and hands it to the consumer. One that doesn't parse is traced and
    /// dropped, and so is what the handler throws.
    void onDataReceived(QByteArray data);
    void onAdapterReady();

private:
    DataConsumer &m_consumer;
};

/// The receiving end of one adapter: decodes its messages and hands them to the subclass.
///
/// Threads:   lives on the thread that makes it, which needs an event loop; its handlers run there.
/// Ownership: owns its connector. A handler may register the consumer anew, but not destroy it.
class SPECTREE_EXPORT DataConsumer {
public:
    explicit DataConsumer(Adapter_Type type);
    virtual ~DataConsumer();
    DataConsumer(const DataConsumer &) = delete;
    DataConsumer &operator=(const DataConsumer &) = delete;

    Adapter_Type GetAdapterType() const { return m_type; }

    /// The one context of the process for consumers, made on first use and destroyed after its last
    /// user. Any thread.
    static std::shared_ptr<zmq::context_t> getContext();

    /// Connects to the group's server and asks for an adapter of this kind; a second call replaces
    /// the connector. \throws KRException for a kind without a name, and for an address or a key
    /// that is none; the old connector stays then
    void registerAtGroup(sbs::ConsumerGroup &group);
    /// Sends a message to the adapter. Dropped with a trace before registerAtGroup.
    void sendCommandOverConnector(const QByteArray &command);
    /// The line to the adapter, for its further signals; null before registerAtGroup.
    sbs::ConsumerConnector *connector() const { return m_connector.get(); }

protected:
    /// A message of the adapter. It is destroyed when this returns.
    virtual void handleData(const MData &message) = 0;
    /// The adapter is there, for the first time or again: send it the parameters it needs.
    virtual void handleAdapterReady();

private:
    friend class DataConsumerQObject;
    Adapter_Type m_type;
    std::unique_ptr<DataConsumerQObject> m_qobject;
    std::unique_ptr<sbs::ConsumerConnector> m_connector;
};
