#include "platform/startup/translationcenter.h"

#include <QDataStream>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// A catalogue with one message, in the form that QTranslator reads.
QByteArray catalogue(const char *context, const char *source, const QString &translation)
{
    constexpr quint8 kHashes = 0x42, kMessages = 0x69;
    quint32 hash = 0;
    for (const char *c = source; *c != '\0'; ++c) {
        hash = (hash << 4) + quint8(*c);
        const quint32 top = hash & 0xF0000000U;
        hash = (hash ^ (top >> 24)) & ~top;
    }
    QByteArray message, out = QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd");
    QDataStream fields(&message, QIODevice::WriteOnly);
    fields << quint8(3) << translation; // a QString is its size in bytes and its UTF-16
    for (const auto &[tag, text] : {std::pair<quint8, QByteArray>(6, source), {7, context}})
        fields << tag << text;
    fields << quint8(1);
    QDataStream sections(&out, QIODevice::WriteOnly | QIODevice::Append);
    sections << kHashes << quint32(8) << hash << quint32(0) << kMessages << message;
    return out;
}

TEST(TranslationCenter, LoadsTheRegisteredCataloguesOfALanguage)
{
    TranslationCenter &center = TranslationCenter::Instance();
    EXPECT_EQ(center.GetCatalogues(), QStringList("spectree")) << "by the library's being loaded";
    const QTemporaryDir folder;
    const auto write = [&](const char *name, const QByteArray &bytes) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    write("spectree_de.qm", catalogue("VdStr", "Frequency", "Frequenz"));
    write("plugin_de.qm", catalogue("VdStr", "Level", "Pegel"));
    write("broken_de.qm", "no catalogue");
    const auto frequency = [] { return TranslationCenter::Translate("VdStr", "Frequency"); };
    const auto level = [] { return TranslationCenter::Translate("VdStr", "Level"); };
    EXPECT_EQ(frequency(), "Frequency");

    center.RegisterCatalogue("broken");
    EXPECT_EQ(center.SetLanguage(QLocale("de"), folder.path()), QStringList("spectree"));
    EXPECT_EQ(frequency(), "Frequenz");
    EXPECT_EQ(TranslationCenter::Translate("Other", "Frequency"), "Frequency");
    center.RegisterCatalogue("plugin");
    EXPECT_EQ(level(), "Pegel") << "registered late";
    center.RemoveCatalogue("plugin");
    EXPECT_EQ(level(), "Level");
    EXPECT_TRUE(center.SetLanguage(QLocale("fr"), folder.path()).isEmpty());
    EXPECT_EQ(frequency(), "Frequency");
    center.RemoveCatalogue("broken");
}

} // namespace
