// Command strings of a fast value map. The first byte chooses the sample pair (modulo 13) and, by
// its upper bits, the mode, the compress mode and whether a scan buffer with its data source is
// attached; the rest is the string. A refused string changes nothing, and what is parsed is parsed
// to the same bytes again.
#include "fuzz/fuzztools.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"
#include "valueclasses/fastvaluemap.h"

#include <QCoreApplication>

namespace {

using namespace values;

struct Input {
    std::string commands;
    int mode;
    char compressMode;
    bool withBuffer;
};

/// Data sources have threads and objects that are deleted later. It lives as long as the process.
void makeApplication()
{
    static char name[] = "fuzz_fastvaluemap";
    static char *arguments[] = {name, nullptr};
    static int count = 1;
    static const auto *const only = new QCoreApplication(count, arguments);
    static_cast<void>(only);
}

template <typename Y, typename YHandler>
void run(const Input &input)
{
    HandlerBase::SetDataCompressMode(input.compressMode);
    FastValueMap<Y, YHandler> map;
    ChannelRangeDefinition grid;
    grid.AddRangeDefinition(1, 4U, 100.0, 1.0, QString());
    grid.AddRangeDefinition(5, 4U, 200.0, 1.0, QString());
    map.SetChannelRangeDefinition(grid, 0);
    if (input.withBuffer)
        map.CreateRealTimeBuffer(); // one pair has none
    const std::string before = map.GetObjectStateStringForTransmission(0);
    try {
        map.SetCommandString(input.commands, nullptr, input.mode);
        map.CommandRecordingOn();
        map.CommandRecordingOnForTransmission();
        map.SetCommandString(input.commands, nullptr, input.mode);
        map.GetCommandStringForRecording(unsigned(input.mode));
        map.GetCommandStringForTransmission(unsigned(input.mode));
    } catch (const KRException &) {
        std::vector<std::unique_ptr<KELM::ICommand>> parsed;
        const char former = HandlerBase::GetDataCompressMode();
        try {
            map.SetCommandString(input.commands, parsed, nullptr, input.mode);
        } catch (const KRException &) {
            require(parsed.empty());
            require(HandlerBase::GetDataCompressMode() == former);
            HandlerBase::SetDataCompressMode(input.compressMode);
            require(map.GetObjectStateStringForTransmission(0) == before);
        }
    } catch (const std::exception &) { // unknown channels, overlapping ranges
    }
    HandlerBase::SetDataCompressMode(DataRaw);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

using Run = void (*)(const Input &);
constexpr Run kRuns[] = {
#define SPECTREE_RUN(Y, Handler) run<Y, Handler>,
    SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_RUN)
#undef SPECTREE_RUN
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    static const bool quiet = [] {
        ErrorHandler::Instance().SetTraceMask(0);
        makeApplication();
        CfgCenter::GetAppCfg().Set("UseScanBufferServer", true);
        CfgCenter::GetAppCfg().Set("ScanBufferServerEndpoint", "tcp://127.0.0.1:*");
        return true;
    }();
    static_cast<void>(quiet);
    if (size == 0)
        return 0;
    constexpr int kModes[] = {0, -1, -2, 1};
    const unsigned choice = bytes[0] / std::size(kRuns);
    const Input input{std::string(reinterpret_cast<const char *>(bytes) + 1, size - 1),
                      kModes[choice % 4], char(choice / 4 % 2), choice / 8 % 2 != 0};
    kRuns[bytes[0] % std::size(kRuns)](input);
    return 0;
}
