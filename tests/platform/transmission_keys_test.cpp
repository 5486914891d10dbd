#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"
#include "transmission_rig.h"

#include <gtest/gtest.h>

namespace {

using namespace rig;

struct KeysCase {
    const char *name;
    bool clientHasKeys, clientIsListed, serverKeyIsRight;
};
constexpr KeysCase kKeysCases[] = {
    {"a client in the list", true, true, true},
    {"a client that isn't", true, false, true},
    {"a wrong server key", true, true, false},
    {"a client without keys", false, false, false},
};

TEST(TransmissionKeys, OnlyClientsInTheListComeIn)
{
    const sbs::CurveKeys serverKeys = sbs::CurveKeys::generate();
    const sbs::CurveKeys listed = sbs::CurveKeys::generate();
    Windows windows;
    sbs::ServerOptions options = fastOptions();
    options.keys = serverKeys;
    options.clientKeys = {listed.publicKey};
    const auto server = makeServer(windows, options);
    for (const KeysCase &c : kKeysCases) {
        SCOPED_TRACE(c.name);
        sbs::ConsumerOptions client;
        if (c.clientHasKeys) {
            client.serverKey =
                c.serverKeyIsRight ? serverKeys.publicKey : sbs::CurveKeys::generate().publicKey;
            client.keys = c.clientIsListed ? listed : sbs::CurveKeys::generate();
        }
        Consumer consumer(server->getEndpoint(), QStringLiteral("w"), "Echo", client);
        if (c.clientIsListed && c.serverKeyIsRight) {
            EXPECT_TRUE(consumer.waitForReady());
            continue;
        }
        EXPECT_TRUE(!c.clientHasKeys || consumer.waitForTrouble("key"));
        EXPECT_TRUE(waitFor([&] { return consumer.m_trouble.size() >= 2; }));
        EXPECT_EQ(consumer.m_ready, 0);
    }
    EXPECT_GT(server->statistics().refusedKeys, 0u);
    EXPECT_EQ(windows.m_made, 1);
}

TEST(TransmissionKeys, ComeFromTheConfiguration)
{
    ICfg &cfg = CfgCenter::GetAppCfg();
    const sbs::CurveKeys server = sbs::CurveKeys::generate(), client = sbs::CurveKeys::generate();
    const auto set = [&](const char *key, const QByteArray &value) {
        cfg.Set(QString::fromLatin1(key),
                value.isNull() ? QVariant() : QVariant(QString::fromLatin1(value)));
    };
    set("ScanBufferServerSecretKey", server.secretKey);
    EXPECT_THROW(sbs::ServerOptions::fromConfiguration(), KRException); // nobody could come in
    set("ScanBufferServerClientKeys", client.publicKey + "\n" + server.publicKey);
    const auto options = sbs::ServerOptions::fromConfiguration();
    EXPECT_EQ(options.keys.publicKey, server.publicKey);
    EXPECT_EQ(options.clientKeys, (QList<QByteArray>{client.publicKey, server.publicKey}));
    set("ScanBufferServerClientKeys", "tooshort");
    EXPECT_THROW(sbs::ServerOptions::fromConfiguration(), KRException);
    set("ScanBufferClientSecretKey", client.secretKey);
    EXPECT_THROW(sbs::ConsumerOptions::fromConfiguration(), KRException);
    set("ScanBufferServerPublicKey", server.publicKey);
    EXPECT_EQ(sbs::ConsumerOptions::fromConfiguration().keys.publicKey, client.publicKey);
    for (const char *key : {"ScanBufferServerSecretKey", "ScanBufferServerClientKeys",
                            "ScanBufferClientSecretKey", "ScanBufferServerPublicKey"})
        set(key, QByteArray());
    EXPECT_EQ(sbs::ServerOptions::fromConfiguration().endpoint, "tcp://*:*");
}

TEST(TransmissionKeys, AreReadAsHexToo)
{
    const QString z85 = QStringLiteral("HelloWorldHelloWorldHelloWorldHelloWorld");
    const QString hex = QStringLiteral("864FD26FB559F75B"); // what "HelloWorld" stands for
    EXPECT_EQ(sbs::CurveKeys::parse(hex.repeated(4), QStringLiteral("k")), z85.toLatin1());
    EXPECT_EQ(sbs::CurveKeys::parse(z85, QStringLiteral("k")), z85.toLatin1());
    for (const char *bad : {"", "abc", "HelloWorldHelloWorldHelloWorldHelloWorl\"", "zz"})
        EXPECT_THROW(sbs::CurveKeys::parse(QString::fromLatin1(bad), QStringLiteral("k")),
                     KRException);
}

} // namespace
