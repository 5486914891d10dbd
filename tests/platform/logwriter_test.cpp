// The log service: where lines go, and what becomes of them when the disk is full.
#include "fault.h"
#include "platform/base/logfilesink.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <csignal>
#include <sys/resource.h>
#include <thread>

namespace {

QStringList *g_messages = nullptr; // of the default category

void keepMessage(QtMsgType, const QMessageLogContext &context, const QString &text)
{
    if (qstrcmp(context.category, "spectree.log") == 0)
        *g_messages << text;
    else if (qstrcmp(context.category, "spectree.trace") == 0)
        CLogWriter().Send(text); // the trace goes into the log, too
}

struct LogWriter : ::testing::Test {
    LogWriter()
    {
        g_messages = &messages;
        qInstallMessageHandler(keepMessage);
    }
    ~LogWriter() override
    {
        qInstallMessageHandler(nullptr);
        CLogWriter::InstallSink(nullptr);
    }
    QByteArray content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QStringList messages;
    QTemporaryDir folder;
    const QString path = folder.filePath("a.log");
};

TEST_F(LogWriter, WritesOneLineWhateverTheTextHolds)
{
    CLogWriter writer;
    writer.SetModuleName("mod\nule");
    writer.Send("a\tb\r\nc");
    writer.Send(QString::fromUtf8("\x1b[2J\u2028 5 dBµV"));
    EXPECT_EQ(messages, QStringList({"mod\\nule: a\tb\\r\\nc",
                                     QString::fromUtf8("mod\\nule: \\x1b[2J\\x2028 5 dBµV")}));
}

TEST_F(LogWriter, AppendsToAFileFromManyThreads)
{
    CLogWriter::InstallSink(std::make_shared<LogFileSink>(path));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([this, thread] {
            CLogWriter writer;
            writer.SetModuleName(QString::number(thread));
            for (int i = 0; i < 250; ++i) {
                if (i == 100) // while others write to the one before
                    CLogWriter::InstallSink(std::make_shared<LogFileSink>(path));
                writer.Send(QString(200, 'x'));
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    const QRegularExpression line(
        "^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z\t[0-3]\tx{200}$");
    const QStringList lines = QString::fromUtf8(content()).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.size(), 4 * 250);
    EXPECT_EQ(lines.filter(line), lines);
    EXPECT_TRUE(content().endsWith('\n'));
}

TEST_F(LogWriter, KeepsALineThatTheDiskRefuses)
{
    const auto full = std::make_shared<LogFileSink>("/dev/full");
    CLogWriter::InstallSink(full);
    CLogWriter writer;
    writer.SetModuleName("m");
    writer.Send("kept");
    EXPECT_EQ(messages, QStringList("m: kept"));
    EXPECT_EQ(full->GetLostCount(), 2u) << "the line and its trace";
    EXPECT_EQ(full->GetLastError(), "No space left on device");
    const std::string reason = faultOf([&] { LogFileSink(folder.filePath("none/a.log")); }).reason;
    EXPECT_NE(reason.find("No such file"), std::string::npos) << reason;
}

TEST_F(LogWriter, GoesOnBehindALineThatWasCut)
{
    LogFileSink sink(path);
    const QString line(200, 'x');
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = before;
    small.rlim_cur = 300; // one line and a bit
    setrlimit(RLIMIT_FSIZE, &small);
    const bool first = sink.Write("m", line), cut = sink.Write("m", line);
    const bool none = sink.Write("m", line);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_TRUE(first && !cut && !none && sink.Write("m", line));
    const QList<QByteArray> lines = content().split('\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines[0].endsWith("Z\tm\t" + line.toLatin1()));
    EXPECT_TRUE(lines[2].endsWith("Z\tm\t" + line.toLatin1()));
    EXPECT_EQ(sink.GetLostCount(), 2u);
}

} // namespace
