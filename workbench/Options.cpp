// SPDX-License-Identifier: Apache-2.0
#include "Options.h"

#include <utils/Translation.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <cstdlib>
#include <iostream>

namespace workbench
{

namespace
{

bool takeCount(const QCommandLineParser& parser, const QString& name, int least, int& value, QString& problem)
{
    if (!parser.isSet(name)) {
        return true;
    }
    bool good = false;
    value = parser.value(name).toInt(&good);
    if (!good || value < least) {
        problem =
            QCoreApplication::translate("workbench", "--%1：需要不小于 %2 的整数").arg(name, QString::number(least));
        return false;
    }
    return true;
}

bool takeServers(const QCommandLineParser& parser, Options& options, QString& problem)
{
    for (const QString& text : parser.values("server")) {
        ServerSetting server;
        if (!parseServer(text, server, problem)) {
            problem = QCoreApplication::translate("workbench", "--server：%1").arg(problem);
            return false;
        }
        server.address.caFile = parser.value("ca").toStdString();
        server.address.encrypted = !parser.isSet("plain");
        options.servers.push_back(std::move(server));
    }
    if (options.servers.empty() && (parser.isSet("ca") || parser.isSet("plain"))) {
        problem = QCoreApplication::translate("workbench", "--ca 和 --plain 需要 --server");
    } else if (int(!options.database.isEmpty()) + int(!options.servers.empty()) + int(!options.serverFile.isEmpty()) >
               1) {
        problem = QCoreApplication::translate("workbench", "--database、--server 和 --servers 只能使用其中一种");
    }
    return problem.isEmpty() && checkServers(options.servers, problem);
}

/// The first of some places beside the program that exists; the last one when none does.
QString beside(const QStringList& places)
{
    const QDir program(QCoreApplication::applicationDirPath());
    QString path;
    for (const QString& place : places) {
        path = QDir::cleanPath(program.absoluteFilePath(place));
        if (QFileInfo::exists(path)) {
            break;
        }
    }
    return path;
}

} // namespace

QList<QCommandLineOption> commandLineOptions()
{
    return {
        {"database", QCoreApplication::translate("workbench", "数据库文件，不存在时以示例数据创建"), "file"},
        {"groups", QCoreApplication::translate("workbench", "新数据库的账号组数量"), "number"},
        {"accounts", QCoreApplication::translate("workbench", "新数据库的账号数量"), "number"},
        {"server", QCoreApplication::translate("workbench", "通过网络连接的分系统，可重复"),
         QStringLiteral("name,tag,host:port")},
        {"ca", QCoreApplication::translate("workbench", "--server 信任的证书颁发机构（PEM）"), "file"},
        {"plain", QCoreApplication::translate("workbench", "--server 不加密，只能用于本机")},
        {"servers", QCoreApplication::translate("workbench", "分系统列表文件"), "file"},
        {"plugins", QCoreApplication::translate("workbench", "其他插件目录，可重复"), "folder"},
        {"config", QCoreApplication::translate("workbench", "保存布局和设置的文件"), "file"},
        {"modules", QCoreApplication::translate("workbench", "模块开关文件（Lua）"), "file"},
        {"themes", QCoreApplication::translate("workbench", "附加主题目录"), "folder"},
        {"theme", QCoreApplication::translate("workbench", "主题：dark 或 light"), "name"},
        utils::languageOption(),
        {"user", QCoreApplication::translate("workbench", "用户名"), "name"},
        {"password-from-stdin", QCoreApplication::translate("workbench", "从标准输入读取密码并直接登录")},
    };
}

bool parseOptions(const QStringList& arguments, Options& options, QString& problem)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("workbench", "风控管理客户端"));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions(commandLineOptions());
    if (!parser.parse(arguments)) {
        problem = parser.errorText();
        return false;
    }
    if (parser.isSet(help)) {
        std::cout << qUtf8Printable(parser.helpText());
        std::exit(0);
    }
    if (parser.isSet(version)) {
        std::cout << qUtf8Printable(QCoreApplication::applicationName()) << ' '
                  << qUtf8Printable(QCoreApplication::applicationVersion()) << '\n';
        std::exit(0);
    }
    if (!parser.positionalArguments().isEmpty()) {
        problem =
            QCoreApplication::translate("workbench", "多余的参数：%1").arg(parser.positionalArguments().join(' '));
        return false;
    }
    options.database = parser.value("database");
    options.serverFile = parser.value("servers");
    if (!takeServers(parser, options, problem)) {
        return false;
    }
    options.pluginFolders = parser.values("plugins");
    options.configFile = parser.value("config");
    options.moduleFile = parser.value("modules");
    options.themeFolder = parser.value("themes");
    options.theme = parser.value("theme");
    options.user = parser.value("user");
    options.passwordFromStdin = parser.isSet("password-from-stdin");
    if (options.passwordFromStdin && options.user.isEmpty()) {
        problem = QCoreApplication::translate("workbench", "--password-from-stdin 需要 --user");
        return false;
    }
    return takeCount(parser, "groups", 0, options.sampleSize.groups, problem) &&
           takeCount(parser, "accounts", 1, options.sampleSize.accounts, problem);
}

bool completeOptions(Options& options, QString& problem)
{
    if (options.serverFile.isEmpty() && options.servers.empty() && options.database.isEmpty()) {
        options.serverFile = QStandardPaths::locate(QStandardPaths::AppConfigLocation, "servers.ini");
    }
    if (!options.serverFile.isEmpty() && !readServerList(options.serverFile, options.servers, problem)) {
        return false;
    }
    if (options.database.isEmpty() && options.servers.empty()) {
        options.database = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/workbench.db";
    }
    options.pluginFolders << QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/plugins"
                          << beside({QStringLiteral(QAV_PLUGIN_FOLDER), QStringLiteral("../lib")});
    if (options.moduleFile.isEmpty()) {
        options.moduleFile = beside({QStringLiteral(QAV_DATA_FOLDER "/modules.lua")});
    }
    return true;
}

} // namespace workbench
