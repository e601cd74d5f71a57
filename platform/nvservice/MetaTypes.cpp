// SPDX-License-Identifier: Apache-2.0
#include <nvservice/MetaTypes.h>

namespace nvservice
{

void registerMetaTypes()
{
    qRegisterMetaType<IDataPtr>("nvservice::IDataPtr");
    qRegisterMetaType<std::vector<IDataPtr>>("std::vector<nvservice::IDataPtr>");
}

} // namespace nvservice
