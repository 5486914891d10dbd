// A log of value changes: a configuration file says what to watch and what to write, and a file
// takes the lines.
//
//   log_changes [FOLDER]      writes FOLDER/receiver.ldf and FOLDER/changes.log
#include "memmap/logvtdata.h"
#include "platform/base/logfilesink.h"
#include "valueclasses/valuenumeric.h"
#include "valueclasses/valueselection.h"
#include "valuetree/tree.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>

namespace {

using namespace values;

const char kConfiguration[] = "LDF receiver log\n"
                              "@VALUES\n"
                              "FLOAT,/RX/FREQUENCY,#0,1e-6\n"
                              "INTEGER,/RX/LEVEL,#1,0.1\n"
                              "SELECTION,/RX/DEMODULATION,#2\n"
                              "@ENDVALUES\n"
                              "@MODULE,*\n"
                              "@STATION,north\n"
                              "@LOGGERTYPE,RX\n"
                              "@LOGGERSEND,#0 MHz, #1 dBuV, #2\n"
                              "@VALUECHANGE\n"
                              "/RX/FREQUENCY\n"
                              "@ENDVALUECHANGE\n";

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QTemporaryDir temporary;
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : temporary.path();

    auto *const frequency = new ValueNumeric<double>("FREQUENCY", 100e6, 20e6, 3000e6);
    auto *const level = new ValueNumeric<int>("LEVEL", 0, -500, 1500);
    auto *const mode = new ValueSelection("DEMODULATION");
    for (ValueBase *value : {static_cast<ValueBase *>(frequency), static_cast<ValueBase *>(level),
                             static_cast<ValueBase *>(mode)})
        Tree::Instance().AddValue("/RX/" + value->GetName(), value); // owned by the tree
    mode->AddItems({"AM", "FM"}, nullptr);

    CLogWriter::InstallSink(std::make_shared<LogFileSink>(folder + "/changes.log"));
    LogVTData log;
    if (!writeFile(folder + "/receiver.ldf", kConfiguration) ||
        !log.LoadFromFile(folder + "/receiver.ldf"))
        return 1;
    log.EnableTrigger(true);

    mode->Select("FM", nullptr);
    level->SetValue(437, nullptr);
    frequency->SetValue(145.5e6, nullptr); // the trigger: one line
    level->SetValue(120, nullptr);
    frequency->SetValue(98.5e6, nullptr); // and another one

    QFile written(folder + "/changes.log");
    if (!written.open(QIODevice::ReadOnly))
        return 1;
    std::fputs(written.readAll().constData(), stdout);
    return 0;
}
