#include "platform/base/zstdcodec.h"

#include "platform/base/krexception.h"

#include <zstd.h>

#include <memory>

namespace Kelm {
namespace {

struct FreeContext {
    void operator()(ZSTD_CCtx *context) const { ZSTD_freeCCtx(context); }
    void operator()(ZSTD_DCtx *context) const { ZSTD_freeDCtx(context); }
};

constexpr int kLevel = 1;

} // namespace

void zstdCompress(const char *data, std::size_t size, std::string &out)
{
    thread_local const std::unique_ptr<ZSTD_CCtx, FreeContext> context(ZSTD_createCCtx());
    const std::size_t start = out.size();
    out.resize(start + ZSTD_compressBound(size));
    const std::size_t written = ZSTD_compressCCtx(context.get(), out.data() + start,
                                                  out.size() - start, data, size, kLevel);
    if (ZSTD_isError(written)) {
        out.resize(start);
        throw KRException(QString::fromLatin1(ZSTD_getErrorName(written)), __FILE__, "Kelm",
                          "zstdCompress", __LINE__);
    }
    out.resize(start + written);
}

bool zstdDecompress(const char *data, std::size_t size, std::string &out, std::size_t limit)
{
    if (size == 0) {
        out.clear();
        return true;
    }
    const unsigned long long declared = ZSTD_getFrameContentSize(data, size);
    if (declared == ZSTD_CONTENTSIZE_ERROR || declared == ZSTD_CONTENTSIZE_UNKNOWN ||
        declared > limit)
        return false;
    thread_local const std::unique_ptr<ZSTD_DCtx, FreeContext> context(ZSTD_createDCtx());
    std::string content(std::size_t(declared), '\0');
    const std::size_t got =
        ZSTD_decompressDCtx(context.get(), content.data(), content.size(), data, size);
    if (ZSTD_isError(got) || got != content.size())
        return false;
    out = std::move(content);
    return true;
}

} // namespace Kelm
