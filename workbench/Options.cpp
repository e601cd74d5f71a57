#include "Options.h"

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
        problem = QStringLiteral("--%1: 需要不小于 %2 的整数").arg(name).arg(least);
        return false;
    }
    return true;
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

bool parseOptions(const QStringList& arguments, Options& options, QString& problem)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("风控管理客户端"));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions({
        {"database", QStringLiteral("数据库文件; 不存在时以示例数据创建"), "file"},
        {"groups", QStringLiteral("新数据库的账号组数量"), "number"},
        {"accounts", QStringLiteral("新数据库的账号数量"), "number"},
        {"plugins", QStringLiteral("插件目录, 可重复"), "folder"},
        {"config", QStringLiteral("保存布局和设置的文件"), "file"},
        {"modules", QStringLiteral("模块开关文件 (Lua)"), "file"},
        {"themes", QStringLiteral("附加主题目录"), "folder"},
        {"theme", QStringLiteral("主题: dark 或 light"), "name"},
        {"user", QStringLiteral("用户名"), "name"},
        {"password-from-stdin", QStringLiteral("从标准输入读取密码并直接登录")},
    });
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
        problem = QStringLiteral("多余的参数: %1").arg(parser.positionalArguments().join(' '));
        return false;
    }
    options.database = parser.value("database");
    options.pluginFolders = parser.values("plugins");
    options.configFile = parser.value("config");
    options.moduleFile = parser.value("modules");
    options.themeFolder = parser.value("themes");
    options.theme = parser.value("theme");
    options.user = parser.value("user");
    options.passwordFromStdin = parser.isSet("password-from-stdin");
    if (options.passwordFromStdin && options.user.isEmpty()) {
        problem = QStringLiteral("--password-from-stdin 需要 --user");
        return false;
    }
    return takeCount(parser, "groups", 0, options.sampleSize.groups, problem) &&
           takeCount(parser, "accounts", 1, options.sampleSize.accounts, problem);
}

void completeOptions(Options& options)
{
    if (options.database.isEmpty()) {
        options.database = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/workbench.db";
    }
    if (options.pluginFolders.isEmpty()) {
        options.pluginFolders << beside({QStringLiteral(QAV_PLUGIN_FOLDER), QStringLiteral("../lib")});
    }
    if (options.moduleFile.isEmpty()) {
        options.moduleFile = beside({QStringLiteral(QAV_DATA_FOLDER "/modules.lua")});
    }
}

} // namespace workbench
