// SPDX-License-Identifier: Apache-2.0
#include "service/admin/CommandLine.h"
#include "service/admin/AdministratorName.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/store/MasterData.h"

#include <utils/Translation.h>

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

namespace service
{

using utils::EErrorCode;

namespace
{

constexpr char StoreVariable[] = "QAV_STORE";
constexpr int MaxNameLength = 64; ///< of --as

void printLine(std::FILE* stream, const QString& text)
{
    std::fprintf(stream, "%s\n", text.toUtf8().constData());
}

QString overview(const std::vector<Command>& commands, const QString& group)
{
    QString text = group.isEmpty()
                       ? QCoreApplication::translate(
                             "service", "用法：qav-admin <命令> [选项] [参数]\n管理数据服务的数据库。\n\n命令：\n")
                       : QCoreApplication::translate("service", "命令：\n");
    for (const Command& command : commands) {
        if (group.isEmpty() || command.name.startsWith(group + ' ')) {
            text += QStringLiteral("  %1 %2\n").arg(command.name.leftJustified(20), command.summary);
        }
    }
    return text + QCoreApplication::translate("service", "\n用 qav-admin <命令> --help 查看命令的说明。");
}

void prepare(QCommandLineParser& parser, const Command& command)
{
    parser.setApplicationDescription(command.summary + QStringLiteral("\n\n") +
                                     command.details.join(QStringLiteral("\n\n")));
    for (const Argument& argument : command.arguments) {
        parser.addPositionalArgument(argument.name, argument.description);
    }
    for (const QCommandLineOption& option : command.allOptions()) {
        parser.addOption(option);
    }
}

void requireParsed(QCommandLineParser& parser, const QStringList& arguments)
{
    if (parser.parse(arguments)) {
        return;
    }
    const QStringList unknown = parser.unknownOptionNames();
    throw UsageError(unknown.isEmpty()
                         ? QCoreApplication::translate("service", "选项用法不正确：%1").arg(parser.errorText())
                         : QCoreApplication::translate("service", "未知选项：%1")
                               .arg(unknown.join(QCoreApplication::translate("service", "、"))));
}

void requireCount(const Command& command, const QStringList& given)
{
    const int wanted = static_cast<int>(command.arguments.size());
    const bool isRepeated = wanted > 0 && command.arguments.back().isRepeated;
    if (given.size() < wanted) {
        throw UsageError(QCoreApplication::translate("service", "缺少参数：%1")
                             .arg(command.arguments[static_cast<std::size_t>(given.size())].name));
    }
    if (given.size() > wanted && !isRepeated) {
        throw UsageError(QCoreApplication::translate("service", "多余的参数：%1").arg(given[wanted]));
    }
}

QString helpOf(const Command& command, const QCommandLineParser& parser)
{
    const QString text = parser.helpText();
    return QCoreApplication::translate("service", "用法：qav-admin %1 [选项]%2\n")
               .arg(command.name, argumentsOf(command)) +
           text.mid(text.indexOf('\n') + 1);
}

int exitCodeOf(EErrorCode code)
{
    return code == EErrorCode::StorageFailure || code == EErrorCode::NotConnected ? StoreUnusable : Refused;
}

int runCommand(const Command& command, const QStringList& words, int wordsOfName)
{
    try {
        QCommandLineParser parser;
        prepare(parser, command);
        requireParsed(parser, words);
        if (parser.isSet(QStringLiteral("help"))) {
            printLine(stdout, helpOf(command, parser));
            return Done;
        }
        Invocation invocation(command, parser, parser.positionalArguments().mid(wordsOfName));
        requireCount(command, invocation.arguments());
        return command.run(invocation);
    } catch (const UsageError& error) {
        printLine(stderr, QString::fromUtf8(error.what()));
        printLine(stderr, QCoreApplication::translate("service", "用法见 qav-admin %1 --help").arg(command.name));
        return WrongUse;
    } catch (const Refusal& refusal) {
        printLine(stderr, QString::fromUtf8(refusal.what()));
        return Refused;
    } catch (const StoreError& failure) {
        printLine(stderr, QString::fromUtf8(failure.what()));
        return exitCodeOf(failure.error().code());
    }
}

} // namespace

QString argumentsOf(const Command& command)
{
    QString text;
    for (const Argument& argument : command.arguments) {
        text += ' ' + argument.name + (argument.isRepeated ? QStringLiteral("...") : QString());
    }
    return text;
}

std::vector<QCommandLineOption> Command::allOptions() const
{
    std::vector<QCommandLineOption> all = options;
    if (storeUse != EStoreUse::None) {
        all.push_back(
            {"store",
             QCoreApplication::translate(
                 "service", "数据库：文件，或 postgresql://user@host1,host2/database；缺省时由环境变量 QAV_STORE 指定"),
             "name"});
    }
    if (isChange() && storeUse != EStoreUse::Named) {
        all.push_back(
            {"wait", QCoreApplication::translate("service", "其他程序正在写入时最多等待多久"), "seconds", "10"});
    }
    if (hasServer) {
        all.push_back(
            {"server", QCoreApplication::translate("service", "分系统的名称或标识，只有一个时可以省略"), "name"});
    }
    if (isChange()) {
        all.push_back(
            {"as", QCoreApplication::translate("service", "为谁进行修改，审计记录除工具的使用者外也会写明"), "name"});
    }
    if (hasJson) {
        all.push_back({"json", QCoreApplication::translate("service", "以 JSON 输出结果")});
    }
    all.push_back(utils::languageOption());
    all.push_back({{"h", "help"}, QCoreApplication::translate("service", "显示该命令的说明")});
    return all;
}

Invocation::Invocation(const Command& command, const QCommandLineParser& parser, const QStringList& arguments)
    : m_command(command), m_parser(parser), m_arguments(arguments)
{
}

std::int64_t Invocation::number(const char* option, std::int64_t otherwise) const
{
    if (!isSet(option)) {
        return otherwise;
    }
    bool isNumber = false;
    const qlonglong number = value(option).toLongLong(&isNumber);
    if (!isNumber || number < 0) {
        throw UsageError(
            QCoreApplication::translate("service", "--%1 应为数字：%2").arg(QLatin1String(option), value(option)));
    }
    return number;
}

QString Invocation::requiredValue(const char* option) const
{
    const QString text = value(option);
    if (text.isEmpty()) {
        throw UsageError(QCoreApplication::translate("service", "缺少选项：--%1").arg(QLatin1String(option)));
    }
    return text;
}

QString Invocation::storeName() const
{
    const QString name = isSet("store") ? value("store") : qEnvironmentVariable(StoreVariable);
    if (name.isEmpty()) {
        throw UsageError(QCoreApplication::translate("service", "请用 --store 或环境变量 QAV_STORE 指定数据库"));
    }
    return name;
}

Store& Invocation::store()
{
    return openStoreFor(m_command.storeUse);
}

Store& Invocation::openStoreFor(EStoreUse use)
{
    if (!m_store) {
        m_store = openStore(storeName(), use, m_command.isChange() ? static_cast<int>(number("wait", 10)) : 10);
    }
    return *m_store;
}

const SubSystem& Invocation::server()
{
    if (!m_server) {
        std::vector<SubSystem> found = servers();
        if (found.size() != 1) {
            throw UsageError(found.empty()
                                 ? QCoreApplication::translate("service", "数据库中还没有分系统")
                                 : QCoreApplication::translate("service", "数据库中有多个分系统，请用 --server 指定"));
        }
        m_server = std::move(found.front());
    }
    return *m_server;
}

std::vector<SubSystem> Invocation::servers()
{
    std::vector<SubSystem> all;
    store().read([&all](Connection& connection) { all = loadSubSystems(connection); });
    const std::string wanted = value("server").toStdString();
    if (wanted.empty()) {
        return all;
    }
    const auto found = std::find_if(all.begin(), all.end(), [&](const SubSystem& server) {
        return server.name == wanted || server.systemTag == wanted;
    });
    if (found == all.end()) {
        throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "分系统“%1”不存在"), wanted));
    }
    return {*found};
}

ServerData Invocation::data()
{
    const SubSystem& own = server();
    return {store().connection(), own};
}

std::string Invocation::administrator() const
{
    const QString onBehalfOf = value("as");
    if (isSet("as") && onBehalfOf.trimmed().isEmpty()) {
        throw UsageError(QCoreApplication::translate("service", "--as 不能为空"));
    }
    if (onBehalfOf.size() > MaxNameLength || hasInvisibleCharacters(onBehalfOf)) {
        throw UsageError(
            QCoreApplication::translate("service", "--as 不能超过%1个字符，也不能包含换行、控制字符或不可见字符")
                .arg(MaxNameLength));
    }
    return administratorName(onBehalfOf.trimmed());
}

StorePtr openStore(const QString& name, EStoreUse use, int waitSeconds)
{
    StoreOptions options;
    options.location = name;
    options.busyTimeoutMs = 1000 * waitSeconds;
    options.readOnly = use == EStoreUse::Read;
    options.mayCreate = use == EStoreUse::Create;
    options.statementTimeoutMs = 0; // large files take as long as they take
    return Store::open(options);
}

int runCommandLine(const std::vector<Command>& commands, const QStringList& arguments)
{
    const QString first = arguments.value(1);
    const QString both = first + ' ' + arguments.value(2);
    for (const QString& name : {both, first}) {
        const auto found = std::find_if(commands.begin(), commands.end(),
                                        [&name](const Command& command) { return command.name == name; });
        if (found != commands.end()) {
            return runCommand(*found, arguments, name == both ? 2 : 1);
        }
    }
    const bool isGroup = std::any_of(commands.begin(), commands.end(),
                                     [&](const Command& command) { return command.name.startsWith(first + ' '); });
    if (first == QLatin1String("--help") || first == QLatin1String("-h") || first == QLatin1String("help")) {
        printLine(stdout, overview(commands, {}));
        return Done;
    }
    if (first == QLatin1String("--version")) {
        printLine(stdout, QStringLiteral("qav-admin " QAV_VERSION));
        return Done;
    }
    if (isGroup && (arguments.value(2) == QLatin1String("--help") || arguments.value(2) == QLatin1String("-h"))) {
        printLine(stdout, overview(commands, first));
        return Done;
    }
    printLine(stderr,
              first.isEmpty()
                  ? QCoreApplication::translate("service", "请指定命令")
                  : QCoreApplication::translate("service", "未知命令：%1").arg(isGroup ? both.trimmed() : first));
    printLine(stderr, overview(commands, isGroup ? first : QString()));
    return WrongUse;
}

} // namespace service
