#pragma once

#include <nvservice/Export.h>
#include <nvservice/IData.h>

#include <QtCore/QMetaType>

#include <vector>

Q_DECLARE_METATYPE(nvservice::IDataPtr)
Q_DECLARE_METATYPE(std::vector<nvservice::IDataPtr>)

namespace nvservice
{

/// Makes the types above known to Qt under the names that signals use, so that they can be delivered between threads.
/// Client and plug-ins each call it before their first connection; calling it again costs nothing. Any thread.
NVSERVICE_EXPORT void registerMetaTypes();

} // namespace nvservice
