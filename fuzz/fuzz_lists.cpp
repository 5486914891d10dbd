// Lists, vectors and curves. The first byte chooses the kind (modulo 35) and, by its upper bits, a
// mode of command strings or the text form; from 140 on it is a curve. The rest is the string. A
// refused string changes nothing; what was taken is written and restored to the same bytes.
#include "fuzz/fuzztools.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/kfactorvalue.h"
#include "valueclasses/valuespecialinterest.h"

namespace {

using namespace values;

using Make = std::unique_ptr<ValueBase> (*)();

template <typename List>
std::unique_ptr<ValueBase> make()
{
    return std::make_unique<List>();
}

constexpr Make kKinds[] = {
#define SPECTREE_LIST(T, FormatClass, Type, Name) make<ValueList<T, FormatClass>>,
#define SPECTREE_VECTOR(T, FormatClass, Type, Name) make<ValueVector<T, FormatClass>>,
    SPECTREE_FOR_EACH_LIST_KIND(SPECTREE_LIST) SPECTREE_FOR_EACH_VECTOR_KIND(SPECTREE_VECTOR)
        make<ValueSpecialInterest>,
};

std::string stateOf(ValueBase &value)
{
    return value.GetObjectStateStringForTransmission(unsigned(ModeBinaryTagged));
}

void runText(Make kind, const std::string &text)
{
    const auto value = kind();
    try {
        value->SetStringValue(QString::fromUtf8(text.data(), int(text.size())), nullptr);
    } catch (const KRException &) {
        require(stateOf(*value) == stateOf(*kind()));
        return;
    }
    const auto copy = kind();
    copy->SetCommandString(stateOf(*value), nullptr, ModeBinaryTagged);
    require(copy->GetStringValue() == value->GetStringValue());
}

void runCommands(Make kind, const std::string &commands, int mode)
{
    const auto value = kind();
    const std::string before = stateOf(*value);
    try {
        value->SetCommandString(commands, nullptr, mode);
    } catch (const KRException &) {
        // A setter may refuse what was well formed; a malformed string changes nothing.
        std::vector<std::unique_ptr<KELM::ICommand>> parsed;
        try {
            value->SetCommandString(commands, parsed, nullptr, mode);
        } catch (const KRException &) {
            require(parsed.empty() && stateOf(*value) == before);
        }
        return;
    }
    if (value->GetState() == VS_DELETED || value->IsTransactionActive())
        return;
    const auto copy = kind();
    copy->SetCommandString(stateOf(*value), nullptr, ModeBinaryTagged);
    require(stateOf(*copy) == stateOf(*value));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    ErrorHandler::Instance().SetTraceMask(0);
    if (size == 0)
        return 0;
    constexpr std::size_t kFirstCurve = 4 * std::size(kKinds);
    const Make kind =
        bytes[0] >= kFirstCurve ? make<ValueKFactor> : kKinds[bytes[0] % std::size(kKinds)];
    const std::string input(reinterpret_cast<const char *>(bytes) + 1, size - 1);
    constexpr int kModes[] = {0, -1, -2};
    const unsigned choice = bytes[0] / std::size(kKinds) % (std::size(kModes) + 1);
    if (choice == std::size(kModes))
        runText(kind, input);
    else
        runCommands(kind, input, kModes[choice]);
    return 0;
}
