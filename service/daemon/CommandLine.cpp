// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/CommandLine.h"

#include <QCoreApplication>

#include <utils/Translation.h>

namespace service::daemon
{

QList<QCommandLineOption> commandLineOptions()
{
    return {utils::languageOption(),
            {QStringLiteral("config"), QCoreApplication::translate("service", "配置文件，同时读取旁边的 conf.d/*.toml"),
             QStringLiteral("file"), QStringLiteral(QAV_CONFIGURATION_FILE)},
            {QStringLiteral("store"),
             QCoreApplication::translate("service", "数据库文件或 postgresql:// 地址，代替配置中的数据库"),
             QStringLiteral("location")},
            {QStringLiteral("check-config"),
             QCoreApplication::translate("service", "显示每项设置的来源，列出全部错误，然后结束")}};
}

} // namespace service::daemon
