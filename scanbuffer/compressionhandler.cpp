#include "scanbuffer/compressionhandler.h"

namespace sbs {

CompressionHandler::CompressionHandler() = default;
CompressionHandler::~CompressionHandler() = default;

} // namespace sbs
