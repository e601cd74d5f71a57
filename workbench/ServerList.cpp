// SPDX-License-Identifier: Apache-2.0
#include "ServerList.h"

#include <WQ/StringConversion.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>

namespace workbench
{

namespace
{

bool takePort(const QString& text, QAV::NetworkServer& address)
{
    bool good = false;
    address.port = text.toUShort(&good);
    return good && address.port != 0;
}

bool readServer(const QSettings& list, const QDir& folder, ServerSetting& server, QString& problem)
{
    static const QSet<QString> known{"name", "tag", "host", "port", "ca", "plain"};
    for (const QString& key : list.childKeys()) {
        if (!known.contains(key)) {
            problem = QCoreApplication::translate("workbench", "未知的设置项：%1").arg(key);
            return false;
        }
    }
    server.name = list.value("name").toString();
    server.address.systemTag = WQ::qsToS(list.value("tag").toString());
    server.address.host = WQ::qsToS(list.value("host").toString());
    const QString authorities = list.value("ca").toString();
    if (!authorities.isEmpty()) {
        server.address.caFile = WQ::qsToS(folder.absoluteFilePath(authorities));
    }
    const QString plain = list.value("plain", "false").toString();
    server.address.encrypted = plain != QLatin1String("true");
    if (plain != QLatin1String("true") && plain != QLatin1String("false")) {
        problem = QCoreApplication::translate("workbench", "plain 只能是 true 或 false");
    } else if (!takePort(list.value("port").toString(), server.address)) {
        problem = QCoreApplication::translate("workbench", "port 需要 1 至 65535 的整数");
    }
    return problem.isEmpty();
}

} // namespace

bool readServerList(const QString& file, std::vector<ServerSetting>& servers, QString& problem)
{
    if (!QFileInfo(file).isReadable() || !QFileInfo(file).isFile()) {
        problem = QCoreApplication::translate("workbench", "无法读取分系统列表：%1").arg(file);
        return false;
    }
    QSettings list(file, QSettings::IniFormat);
    list.setIniCodec("UTF-8");
    for (const QString& section : list.childGroups()) {
        list.beginGroup(section);
        ServerSetting server;
        if (!readServer(list, QFileInfo(file).absoluteDir(), server, problem)) {
            problem = QCoreApplication::translate("workbench", "%1 [%2]：%3").arg(file, section, problem);
            return false;
        }
        servers.push_back(std::move(server));
        list.endGroup();
    }
    if (list.status() != QSettings::NoError || servers.empty()) {
        problem = QCoreApplication::translate("workbench", "分系统列表格式错误或为空：%1").arg(file);
        return false;
    }
    if (!checkServers(servers, problem)) {
        problem = QCoreApplication::translate("workbench", "%1：%2").arg(file, problem);
        return false;
    }
    return true;
}

bool parseServer(const QString& text, ServerSetting& server, QString& problem)
{
    static const QRegularExpression form(R"(^([^,]+),([^,]+),(\[[^\]]+\]|[^:,]+):(\d+)$)");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch() || !takePort(match.captured(4), server.address)) {
        problem = QCoreApplication::translate("workbench", "应为“名称,标识,主机:端口”：%1").arg(text);
        return false;
    }
    server.name = match.captured(1);
    server.address.systemTag = WQ::qsToS(match.captured(2));
    QString host = match.captured(3);
    if (host.startsWith('[')) {
        host = host.mid(1, host.size() - 2);
    }
    server.address.host = WQ::qsToS(host);
    return true;
}

bool checkServers(const std::vector<ServerSetting>& servers, QString& problem)
{
    QSet<QString> names;
    QSet<QString> tags;
    for (const ServerSetting& server : servers) {
        const QString tag = WQ::sToQs(server.address.systemTag);
        const utils::NVError unusable = QAV::CNetworkTransport::check(server.address);
        if (server.name.isEmpty() || tag.isEmpty()) {
            problem = QCoreApplication::translate("workbench", "分系统的名称或标识为空");
        } else if (!unusable.isSuccess()) {
            problem =
                QCoreApplication::translate("workbench", "%1：%2").arg(server.name, WQ::sToQs(unusable.errorMsg()));
        } else if (names.contains(server.name) || tags.contains(tag)) {
            problem =
                QCoreApplication::translate("workbench", "分系统的名称或标识重复：%1（%2）").arg(server.name, tag);
        }
        if (!problem.isEmpty()) {
            return false;
        }
        names << server.name;
        tags << tag;
    }
    return true;
}

} // namespace workbench
