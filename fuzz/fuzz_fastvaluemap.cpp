// Command strings of a fast value map. The first byte chooses the sample pair (modulo 13) and, by
// its upper bits, the mode and the compress mode; the rest is the string. A refused string changes
// nothing, and what is parsed is parsed to the same bytes again.
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/fastvaluemap.h"

#include <cstdlib>

namespace {

using namespace values;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

struct Input {
    std::string commands;
    int mode;
    char compressMode;
};

template <typename Y, typename YHandler>
void run(const Input &input)
{
    HandlerBase::SetDataCompressMode(input.compressMode);
    FastValueMap<Y, YHandler> map;
    ChannelRangeDefinition grid;
    grid.AddRangeDefinition(1, 4U, 100.0, 1.0, QString());
    grid.AddRangeDefinition(5, 4U, 200.0, 1.0, QString());
    map.SetChannelRangeDefinition(grid, 0);
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
        try {
            map.SetCommandString(input.commands, parsed, nullptr, input.mode);
        } catch (const KRException &) {
            require(parsed.empty());
            HandlerBase::SetDataCompressMode(input.compressMode);
            require(map.GetObjectStateStringForTransmission(0) == before);
        }
    } catch (const std::exception &) { // unknown channels, overlapping ranges
    }
    HandlerBase::SetDataCompressMode(DataRaw);
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
        return true;
    }();
    static_cast<void>(quiet);
    if (size == 0)
        return 0;
    constexpr int kModes[] = {0, -1, -2, 1};
    const unsigned choice = bytes[0] / std::size(kRuns);
    const Input input{std::string(reinterpret_cast<const char *>(bytes) + 1, size - 1),
                      kModes[choice % 4], char(choice / 4 % 2)};
    kRuns[bytes[0] % std::size(kRuns)](input);
    return 0;
}
