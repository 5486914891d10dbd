#include "apps/monitor/report.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace monitor;

QJsonObject parse(const QByteArray &json)
{
    QJsonParseError error{};
    const QJsonObject object = QJsonDocument::fromJson(json, &error).object();
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    return object;
}

TEST(Report, HoldsTheAgreedKeysAndNoOther)
{
    Report report{QStringLiteral("tcp://127.0.0.1:40123"),
                  10000,
                  88e6,
                  108e6,
                  152.25,
                  1520,
                  3,
                  9'007'199'254,
                  {{5, 98.1e6, 61.23456}, {9, 89.3e6, 42.0}}};
    const QJsonObject json = parse(toJson(report));
    EXPECT_EQ(json.keys(), QStringList({"bytes", "channels", "endpoint", "f_start_hz", "f_stop_hz",
                                        "lines", "lost_messages", "peaks", "scans_per_second"}));
    EXPECT_EQ(json["endpoint"].toString(), report.endpoint);
    EXPECT_EQ(json["channels"].toDouble(), 10000);
    EXPECT_EQ(json["f_start_hz"].toDouble(), 88e6);
    EXPECT_EQ(json["f_stop_hz"].toDouble(), 108e6);
    EXPECT_EQ(json["scans_per_second"].toDouble(), 152.25);
    EXPECT_EQ(json["lines"].toDouble(), 1520);
    EXPECT_EQ(json["lost_messages"].toDouble(), 3);
    EXPECT_EQ(json["bytes"].toDouble(), 9'007'199'254.0);
    const QJsonArray peaks = json["peaks"].toArray();
    ASSERT_EQ(peaks.size(), 2);
    EXPECT_EQ(peaks[0].toObject()["frequency_hz"].toDouble(), 98.1e6);
    EXPECT_EQ(peaks[0].toObject()["level_dbuv"].toDouble(), 61.23);
    EXPECT_EQ(peaks[1].toObject()["level_dbuv"].toDouble(), 42.0);
}

TEST(Report, StaysJsonWithoutData)
{
    Report report;
    report.scansPerSecond = std::nan("");
    const QByteArray text = toJson(report);
    const QJsonObject json = parse(text);
    EXPECT_TRUE(json["scans_per_second"].isNull());
    EXPECT_TRUE(json["peaks"].isArray());
    EXPECT_TRUE(text.endsWith('\n'));
}

TEST(Report, WritingNamesThePathThatFails)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("report.json"));
    EXPECT_EQ(writeFile(path, "{}\n"), QString());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("{}\n"));
    const QString missing = folder.filePath(QStringLiteral("no/such/folder.json"));
    EXPECT_TRUE(writeFile(missing, "{}\n").contains(missing));
}

} // namespace
