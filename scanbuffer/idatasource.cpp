#include "scanbuffer/idatasource.h"

#include "scanbuffer/scanbufferdatasource.h"

namespace sbs {

IDataSource::~IDataSource() = default;

std::unique_ptr<IDataSource> IDataSource::Create(int valueType)
{
    switch (valueType) {
#define SPECTREE_CASE(id, Y, Handler)                                                              \
    case id:                                                                                       \
        return std::make_unique<ScanBufferDataSource<Y, Handler>>();
        SPECTREE_FOR_EACH_DATA_SOURCE(SPECTREE_CASE)
#undef SPECTREE_CASE
    default:
        return nullptr;
    }
}

} // namespace sbs
