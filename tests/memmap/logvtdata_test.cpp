// Logs of value changes: real values on the tree of the process, and the lines that come out.
#include "memmap/logdf.h"
#include "memmap/logfadobl.h"
#include "platform/base/logfilesink.h"
#include "valueclasses/valuenumeric.h"
#include "valueclasses/valueselection.h"
#include "valuetree/tree.h"
#include "valuetree/valueitem.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace {

using namespace values;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

QStringList *g_traces = nullptr;

struct Log : ::testing::Test {
    Log()
    {
        g_traces = &traces;
        qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { *g_traces << text; });
        CLogWriter::InstallSink(std::make_shared<LogFileSink>(path("changes.log")));
        add(level), add(offset), add(mode), add(note);
        mode->AddItem("AM", 6.5, 1, nullptr);
        mode->AddItem("FM %1", 12, 2, nullptr);
    }
    ~Log() override
    {
        tree.DeleteNode("/RX");
        CLogWriter::InstallSink(nullptr);
        qInstallMessageHandler(nullptr);
    }
    void add(ValueBase *value) { tree.AddValue("/RX/" + value->GetName(), value); }
    QString path(const char *name) const { return folder.filePath(name); }
    QString configure(const QByteArray &content) const
    {
        QFile file(path("log.ldf"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName();
    }
    /// What came since the last call: "module|type|text".
    std::vector<std::string> lines()
    {
        QFile file(path("changes.log"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.seek(m_read));
        std::vector<std::string> all;
        while (!file.atEnd()) {
            const QStringList fields = QString::fromUtf8(file.readLine()).split('\t');
            EXPECT_TRUE(fields.size() == 6 && fields[2] == "Data" && fields[5] == "\n");
            all.push_back(
                (fields[1] + '|' + fields.value(3) + '|' + fields.value(4)).toStdString());
        }
        m_read = file.pos();
        return all;
    }

    QStringList traces;
    QTemporaryDir folder;
    Tree &tree = Tree::Instance();
    ValueNumeric<int> *level = new ValueNumeric<int>("LEVEL", 0, -1000, 1000);
    ValueNumeric<double> *offset = new ValueNumeric<double>("OFFSET", 0.5, -10, 10);
    ValueSelection *mode = new ValueSelection("MODE");
    Value<QString> *note = new Value<QString>("NOTE", "x");

private:
    qint64 m_read = 0;
};

const QByteArray kHead = "LDF anything\n@VALUES\n";
const QByteArray kTail = "@ENDVALUES\n@MODULE,m\n@STATION,s\n@LOGGERTYPE,T\n";

TEST_F(Log, WritesWhatRealChangesLeave)
{
    LogVTData log;
    ASSERT_TRUE(log.LoadFromFile(configure(
        "\xEF\xBB\xBFLDF 1\r\nskipped\r\n@VALUES\r\n"
        "INTEGER,/RX/LEVEL,#1,0.1\r\nFLOAT,/RX/OFFSET,#10,0\r\nFLOAT,/RX/OFFSET,#2,x\r\n"
        "SELECTION,/RX/MODE,#3\r\nNUMERICSELECTION,/RX/MODE,#4,2\r\nSTRING,/RX/NOTE,#5\r\n\r\n"
        "STRING,/RX/LEVEL,#6\r\nSTRING,/RX/NOTE,#\r\nSTRING,/RX/NOTE,#x\r\nHUGE,/RX/NOTE,#7\r\n"
        "STRING,/RX/OFFSET,#8\r\nFLOAT,/RX/OFFSET,#8,-2\r\nFLOAT,/RX/OFFSET,#9,1,2\r\n"
        "STRING,/RX/NOTE,#2000000000\r\n@ENDVALUES\r\n; a comment\r\n@MODULE,*\r\n@STATION,s\r\n"
        "@LOGGERTYPE,T\r\n@LOGGERSEND,#10 #1,#2;#3;#4;#5;#6;#7;#8;#9;#01;#2000000000#\r\n"
        "@VALUECHANGE\r\n/RX/LEVEL\r\n/RX/NONE\r\n/RX/NOTE\r\n@ENDVALUECHANGE\r\n")));
    EXPECT_THAT(traces, ElementsAre("Object /RX/NOTE has no index, no object created",
                                    "Object /RX/NOTE has no index, no object created",
                                    "Object HUGE is an unknown type, no object created",
                                    "Object line FLOAT,/RX/OFFSET,#9,1,2 has more than four words, "
                                    "no object created",
                                    "Trigger /RX/NONE not found",
                                    "Couldn't create a ValueString Object out of /RX/LEVEL: Value "
                                    "not found or Value doesn't fit ValueType"));
    EXPECT_EQ(log.GetModuleName(), QCoreApplication::applicationName());
    level->SetValue(1, nullptr); // not enabled
    EXPECT_THAT(lines(), IsEmpty());

    log.EnableTrigger(true);
    EXPECT_FALSE(log.connect()); // a value is missing; nothing else happens a second time
    level->SetValue(-147, nullptr);
    level->SetValue(-147, nullptr); // equal: no change
    mode->Select("FM %1", nullptr); // no trigger
    note->SetValue("#1\nn", nullptr);
    const std::string module = QCoreApplication::applicationName().toStdString() + "|T|";
    EXPECT_THAT(lines(),
                ElementsAre(module + "0.500000 -15,0.500000;;;x;;#7;-1.000000;#9;#01;x#",
                            module + "0.500000 -15,0.500000;FM %1;24.000000;#1\\nn;;#7;-1.000000;"
                                     "#9;#01;#1\\nn#"));
}

TEST_F(Log, RefusesWhatItCantReadWhole)
{
    const QByteArray values = kHead + "@ENDVALUES\n";
    struct Case {
        QByteArray content;
        const char *trace; // null: loaded
    } const cases[] = {
        {"ldf\n@VALUES\n", "Wrong File Format!"},
        {"", "Wrong File Format!"},
        {QByteArray("\x7f\x00\xff\xfe", 4) + QByteArray(5000, '\0'), "Wrong File Format!"},
        {"LDF\n" + QByteArray(LogVTData::kMaximumFileSize, '#'),
         "File is larger than 1048576 bytes!"},
        {"LDF\n @VALUES\n@values\n", "End of file found while looking for VALUES directive"},
        {kHead, "End of file found while looking for ENDVALUES directive"},
        {values + "MODULE,m\n", "End of file found while looking for MODULE directive"},
        {values + "@MODULE\n", "Syntax error found while looking for MODULE directive"},
        {values + "@MODULE,a,b\n", "Syntax error found while looking for MODULE directive"},
        {values + "@MODULE,m\n", "End of file found while looking for STATION directive"},
        {kHead + kTail, "End of file found while looking for LOGGERSEND directive"},
        {kHead + kTail + "@LOGGERSEND,\n",
         "Syntax error found while looking for LOGGERSEND directive"},
        {kHead + kTail + "@LOGGERSEND,t\n@VALUECHANGE\n/RX/LEVEL\n",
         "End of file found while looking for ENDVALUECHANGE directive"},
        {kHead + kTail + "@LOGGERSEND," + QByteArray(1 << 19, '#') + "\n", nullptr},
    };
    LogVTData log;
    log.EnableTrigger(true);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.content.left(120).constData());
        traces.clear();
        EXPECT_EQ(log.LoadFromFile(configure(c.content)), c.trace == nullptr);
        EXPECT_EQ(traces.join('|').toStdString(), c.trace == nullptr ? "" : c.trace);
        level->StepUp(1, nullptr);
    }
    for (const QString &name : {path("none"), folder.path(), QString("/dev/zero")}) {
        EXPECT_FALSE(log.LoadFromFile(name));
        EXPECT_EQ(traces.takeLast(), "File open failed!");
    }
    EXPECT_THAT(lines(), IsEmpty()); // a trigger of a file that isn't whole says nothing

    // Short tokens of a long text can't blow a line up.
    ASSERT_TRUE(log.LoadFromText(kHead + "STRING,/RX/NOTE,#0\n" + kTail + "@LOGGERSEND," +
                                 QByteArray("#0").repeated(1000)));
    note->SetValue(QString(2000, 'n'), nullptr);
    log.toLogger();
    EXPECT_EQ(traces.takeLast(), "A log line of type T is too long to be sent");
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(Log, LetsItsValuesDieInAnyOrder)
{
    const QByteArray text = kHead + "INTEGER,/RX/LEVEL,#0\nFLOAT,/RX/OFFSET,#1\n" + kTail +
                            "@LOGGERSEND,#0 #1\n@VALUECHANGE\n/RX/LEVEL\n/RX/NOTE\n/RX/LEVEL\n"
                            "@ENDVALUECHANGE\n";
    auto log = std::make_unique<LogVTData>();
    ASSERT_TRUE(log->LoadFromText(text));
    log->EnableTrigger(true);
    EXPECT_EQ(level->GetDeleteObserver(), tree.GetValueItem("/RX/LEVEL"));
    EXPECT_EQ(level->GetObservers().size(), 1u); // three times of use
    level->SetState(VS_DISABLED, nullptr);       // not gone
    level->SetValue(7, nullptr);
    EXPECT_THAT(lines(), ElementsAre("m|T|7 0.500000"));
    offset->SetState(VS_DELETED, nullptr);
    EXPECT_FALSE(offset->HasObservers());
    tree.DeleteValue("/RX/LEVEL");
    note->SetValue("the other trigger", nullptr);
    EXPECT_THAT(lines(), ElementsAre("m|T|#0 #1"));
    EXPECT_TRUE(log->isTriggerAvailable());
    add(level = new ValueNumeric<int>("LEVEL", 0, 0, 9));
    EXPECT_TRUE(log->connect()); // what is gone doesn't come back by itself
    EXPECT_FALSE(level->HasObservers());

    tree.DeleteValue("/RX/OFFSET");
    add(new ValueNumeric<double>("OFFSET", 1, 0, 9));
    EXPECT_TRUE(log->LoadFromText(text)); // by a file it does
    log->disconnect();
    EXPECT_FALSE(level->HasObservers() || note->HasObservers() || log->isTriggerAvailable());
    level->SetValue(1, nullptr);
    EXPECT_TRUE(log->connect());
    level->SetValue(2, nullptr);
    EXPECT_THAT(lines(), ElementsAre("m|T|2 1.000000"));

    LogVTData survivor;
    ASSERT_TRUE(survivor.LoadFromText(text));
    log.reset(); // before its values
    EXPECT_EQ(level->GetObservers().size(), 1u);
    tree.DeleteNode("/RX"); // before the log
    EXPECT_FALSE(survivor.isTriggerAvailable());
    survivor.toLogger();
    EXPECT_THAT(lines(), ElementsAre("m|T|#0 #1"));
}

/// Answers the end of a value by a change of a log's trigger.
struct AnswersTheEnd : IObserver {
    void Update(Observable * /*subject*/, TChangeCode code) override
    {
        if (code == CC_STATE)
            trigger->SetValue(trigger->GetValue() + '!', nullptr);
    }
    Value<QString> *trigger = nullptr;
};

TEST_F(Log, AsksNothingOfADyingValue)
{
    auto *const bearing = new Value<BearingResult>("BEARING");
    add(bearing);
    AnswersTheEnd first; // in front of the logs
    first.trigger = note;
    level->AddObserver(&first);
    bearing->AddObserver(&first);
    LogVTData log;
    ASSERT_TRUE(log.LoadFromText(kHead + "INTEGER,/RX/LEVEL,#0\n" + kTail +
                                 "@LOGGERSEND,#0\n@VALUECHANGE\n/RX/NOTE\n@ENDVALUECHANGE\n"));
    log.EnableTrigger(true);
    LogDF bearings;
    EXPECT_TRUE(bearings.SetBearingResult_ValuePath("/RX/BEARING") &&
                bearings.AddTrigger_ValuePath("/RX/NOTE") && bearings.connect());
    bearings.EnableTrigger(true);
    tree.DeleteValue("/RX/BEARING");
    tree.DeleteValue("/RX/LEVEL");
    EXPECT_THAT(lines(), ElementsAre("m|T|0", "m|T|"));
    log.disconnect();
    note->SetState(VS_DELETED, nullptr);
    EXPECT_FALSE(log.connect());
    EXPECT_FALSE(log.isTriggerAvailable());
}

/// A sink that changes the trigger of the line that it takes.
struct ChangingSink : ILogSink {
    explicit ChangingSink(ValueNumeric<int> &trigger) : value(trigger) {}
    bool Write(const QString &, const QString &) override
    {
        ++lines;
        value.SetValue(value.GetValue() + 1, nullptr);
        return true;
    }
    ValueNumeric<int> &value;
    int lines = 0;
};

TEST_F(Log, WritesOneLineForAChangeMadeByItsReader)
{
    LogVTData log;
    ASSERT_TRUE(log.LoadFromText(kHead + kTail + "@LOGGERSEND,t\n"));
    ASSERT_TRUE(log.AddTrigger_ValuePath("/RX/LEVEL"));
    EXPECT_FALSE(log.AddTrigger_ValuePath("/RX"));
    log.EnableTrigger(true);
    const auto sink = std::make_shared<ChangingSink>(*level);
    CLogWriter::InstallSink(sink);
    level->SetValue(5, nullptr);
    EXPECT_EQ(sink->lines, 1);
}

TEST_F(Log, WritesReceiverLines)
{
    LogFADOBL log;
    log.SetModuleName("rx");
    EXPECT_TRUE(log.SetFrequency_ValuePath("/RX/OFFSET") &&
                log.SetBandwidth_ValuePath("/RX/OFFSET"));
    EXPECT_FALSE(log.SetLevel_ValuePath("/RX/LATER") || log.SetAntenna_ValuePath("/RX/NOTE"));
    EXPECT_TRUE(log.SetDemodulation_ValuePath("/RX/MODE"));
    mode->Select("AM", nullptr);
    log.toLogger();
    EXPECT_TRUE(log.SetBandwidth_ValuePath("/RX/OFFSET")); // in place of the first
    add(new ValueNumeric<double>("LATER", 3, 0, 9));
    EXPECT_FALSE(log.connect()); // the antenna is none
    EXPECT_TRUE(log.AddTrigger_ValuePath("/RX/OFFSET"));
    log.EnableTrigger(true);
    offset->SetValue(0.25, nullptr);
    EXPECT_THAT(lines(), ElementsAre("rx|FADOBL|0.500000@@0.500000@#3@AM@",
                                     "rx|FADOBL|0.250000@3.000000@0.250000@#3@AM@"));
}

TEST_F(Log, WritesBearingLines)
{
    auto *const bearing = new Value<BearingResult>("BEARING");
    add(bearing);
    LogDF log;
    EXPECT_TRUE(log.SetLongitude_ValuePath("/RX/OFFSET") &&
                log.SetDemodulation_ValuePath("/RX/MODE"));
    mode->Select("FM %1", nullptr);
    log.toLogger();
    EXPECT_FALSE(log.SetBearingResult_ValuePath("/RX/NOTE"));
    EXPECT_TRUE(log.SetBearingResult_ValuePath("/RX/BEARING"));
    EXPECT_TRUE(log.AddTrigger_ValuePath("/RX/BEARING") && log.connect());
    log.EnableTrigger(true);
    bearing->SetValue({.frequency = 145.5e6, .azimuth = 12345, .count = 3}, nullptr);
    log.disconnect();
    bearing->SetValue({.frequency = 1}, nullptr);
    EXPECT_TRUE(log.connect());
    bearing->SetValue({.frequency = 2, .azimuth = -5}, nullptr);
    EXPECT_THAT(lines(), ElementsAre("|DF|0.500000@@1.455e+08@123.45@@@FM %1@3@3",
                                     "|DF|0.500000@@2@-0.05@@@FM %1@@0"));
    tree.DeleteValue("/RX/BEARING");
    log.toLogger();
    EXPECT_THAT(lines(), IsEmpty());
}

} // namespace
