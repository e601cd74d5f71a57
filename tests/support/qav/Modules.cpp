// SPDX-License-Identifier: Apache-2.0
#include "support/qav/Modules.h"

#include <luawrapper/LuaModuleCtrl.h>
#include <utils/CSingletonT.h>

#include <QTemporaryFile>

namespace support
{

void switchModules(const QString& configuration)
{
    QTemporaryFile file;
    if (!file.open() || file.write(configuration.toUtf8()) < 0 || !file.flush()) {
        qFatal("no temporary file for the module switches");
    }
    const utils::NVError error =
        utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->load(file.fileName().toStdString());
    if (!error.isSuccess()) {
        qFatal("%s", error.errorMsg().c_str());
    }
}

} // namespace support
