#include "valueclasses/commands/command.h"

#include <array>
#include <new>

namespace values {

void Command::Execute() {}
void Command::AddCommandString(std::string & /*out*/, int /*mode*/) const {}
Command *Command::Clone() const { return new Command; }

namespace {

/// The free blocks that one thread keeps, by size: of 8, 24, 40, 56 and 72 bytes, which is what
/// malloc gives without a gap.
struct Blocks {
    static constexpr std::size_t kStep = 16, kSizes = 5, kMostBytes = std::size_t(4) << 20;
    struct Free {
        Free *next;
    };
    struct Size {
        Free *first = nullptr;
        std::size_t count = 0;
    };

    Blocks() = default;
    ~Blocks();
    Blocks(const Blocks &) = delete;
    Blocks &operator=(const Blocks &) = delete;

    static std::size_t indexOf(std::size_t size) { return (size + 7) / kStep; }
    static std::size_t bytesOf(std::size_t index) { return index * kStep + 8; }
    static Blocks *make();

    std::array<Size, kSizes> sizes;
};

// Null before the first block is freed, and behind the end of the thread's own objects.
// The model spares the lookup that a shared library otherwise makes for each access.
constinit thread_local Blocks *blocks __attribute__((tls_model("initial-exec"))) = nullptr;
constinit thread_local bool ended = false;

Blocks::~Blocks()
{
    blocks = nullptr;
    ended = true;
    for (Size &size : sizes)
        while (Free *const block = size.first) {
            size.first = block->next;
            ::operator delete(block);
        }
}

Blocks *Blocks::make()
{
    if (ended)
        return nullptr;
    thread_local Blocks own;
    return blocks = &own;
}

// A sanitizer is to see each block come and go.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kKeepsBlocks = false;
#elif defined(__has_feature)
constexpr bool kKeepsBlocks = !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer);
#else
constexpr bool kKeepsBlocks = true;
#endif

} // namespace

void *Command::operator new(std::size_t size)
{
    const std::size_t index = Blocks::indexOf(size);
    if (!kKeepsBlocks || index >= Blocks::kSizes)
        return ::operator new(size);
    if (blocks == nullptr || blocks->sizes[index].first == nullptr)
        return ::operator new(Blocks::bytesOf(index));
    Blocks::Size &free = blocks->sizes[index];
    Blocks::Free *const block = free.first;
    free.first = block->next;
    --free.count;
    return block;
}

void Command::operator delete(void *block, std::size_t size)
{
    const std::size_t index = Blocks::indexOf(size);
    Blocks *const own = blocks != nullptr ? blocks : Blocks::make();
    if (!kKeepsBlocks || index >= Blocks::kSizes || own == nullptr ||
        own->sizes[index].count * Blocks::bytesOf(index) >= Blocks::kMostBytes)
        return ::operator delete(block);
    Blocks::Size &free = own->sizes[index];
    free.first = new (block) Blocks::Free{free.first};
    ++free.count;
}

} // namespace values
