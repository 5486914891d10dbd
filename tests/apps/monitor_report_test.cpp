#include "apps/monitor/report.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace monitor;

TEST(Report, HoldsTheAgreedKeysAndNoOther)
{
    const Report report{QStringLiteral("tcp://127.0.0.1:40123"),
                        10000,
                        88e6,
                        108e6,
                        152.25,
                        1520,
                        3,
                        9'007'199'254,
                        {{5, 98.1e6, 61.23456}, {9, 89.3e6, 42.0}}};
    const QByteArray expected = R"({"bytes":9007199254,"channels":10000,)"
                                R"("endpoint":"tcp://127.0.0.1:40123","f_start_hz":88000000,)"
                                R"("f_stop_hz":108000000,"lines":1520,"lost_messages":3,"peaks":[)"
                                R"({"frequency_hz":98100000,"level_dbuv":61.23},)"
                                R"({"frequency_hz":89300000,"level_dbuv":42}],)"
                                R"("scans_per_second":152.25})";
    EXPECT_EQ(QJsonDocument::fromJson(toJson(report)).toJson(QJsonDocument::Compact), expected);
}

TEST(Report, StaysJsonWithoutData)
{
    Report report;
    report.scansPerSecond = std::nan("");
    const QJsonObject json = QJsonDocument::fromJson(toJson(report)).object();
    EXPECT_TRUE(json["scans_per_second"].isNull());
    EXPECT_TRUE(json["peaks"].isArray());
    EXPECT_TRUE(toJson(report).endsWith('\n'));
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
