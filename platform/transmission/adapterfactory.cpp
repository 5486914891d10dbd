#include "platform/transmission/adapterfactory.h"

namespace sbs {

IAdapterFactory::~IAdapterFactory() = default;
IAdapterControllerFactory::~IAdapterControllerFactory() = default;

} // namespace sbs
