// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Export.h>
#include <nvservice/IData.h>

#include <QtCore/QMetaType>

#include <vector>

Q_DECLARE_METATYPE(nvservice::IDataPtr)
Q_DECLARE_METATYPE(std::vector<nvservice::IDataPtr>)

namespace nvservice
{

/// Registers the types above with Qt under the names that signals use, so that queued signals can carry them. Call it
/// before the first connection, in the client and in each plug-in. May be called repeatedly and from any thread.
NVSERVICE_EXPORT void registerMetaTypes();

} // namespace nvservice
