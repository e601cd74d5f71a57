// SPDX-License-Identifier: Apache-2.0
#include "service/admin/CommandLine.h"
#include "service/admin/AdministratorName.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/store/MasterData.h"

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
    QString text = group.isEmpty() ? QStringLiteral("Usage: qav-admin <command> [options] [arguments]\n"
                                                    "Administers the database of the data service.\n\nCommands:\n")
                                   : QStringLiteral("Commands:\n");
    for (const Command& command : commands) {
        if (group.isEmpty() || command.name.startsWith(group + ' ')) {
            text += QStringLiteral("  %1 %2\n").arg(command.name.leftJustified(20), command.summary);
        }
    }
    return text + QStringLiteral("\n'qav-admin <command> --help' describes a command.");
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
    throw UsageError(unknown.isEmpty() ? QStringLiteral("选项用法不正确：") + parser.errorText()
                                       : QStringLiteral("未知选项：") + unknown.join(QStringLiteral("、")));
}

void requireCount(const Command& command, const QStringList& given)
{
    const int wanted = static_cast<int>(command.arguments.size());
    const bool isRepeated = wanted > 0 && command.arguments.back().isRepeated;
    if (given.size() < wanted) {
        throw UsageError(QStringLiteral("缺少参数：") + command.arguments[static_cast<std::size_t>(given.size())].name);
    }
    if (given.size() > wanted && !isRepeated) {
        throw UsageError(QStringLiteral("多余的参数：") + given[wanted]);
    }
}

QString helpOf(const Command& command, const QCommandLineParser& parser)
{
    const QString text = parser.helpText();
    return QStringLiteral("Usage: qav-admin %1 [options]%2\n").arg(command.name, argumentsOf(command)) +
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
        printLine(stderr, QStringLiteral("用法见 qav-admin %1 --help").arg(command.name));
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
        all.push_back({"store",
                       "The database: a file, or postgresql://user@host1,host2/database. Without it the environment "
                       "variable QAV_STORE names it.",
                       "name"});
    }
    if (isChange() && storeUse != EStoreUse::Named) {
        all.push_back({"wait", "How long to wait for somebody else who writes.", "seconds", "10"});
    }
    if (hasServer) {
        all.push_back({"server", "The sub-system, by name or tag; may be left out when there is only one.", "name"});
    }
    if (isChange()) {
        all.push_back(
            {"as", "For whom the change is made; the audit names them beside the person who runs the tool.", "name"});
    }
    if (hasJson) {
        all.push_back({"json", "Write the result as JSON."});
    }
    all.push_back({{"h", "help"}, "Describe the command."});
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
        throw UsageError(QStringLiteral("--%1 应为数字：%2").arg(QLatin1String(option), value(option)));
    }
    return number;
}

QString Invocation::requiredValue(const char* option) const
{
    const QString text = value(option);
    if (text.isEmpty()) {
        throw UsageError(QStringLiteral("缺少选项：--%1").arg(QLatin1String(option)));
    }
    return text;
}

QString Invocation::storeName() const
{
    const QString name = isSet("store") ? value("store") : qEnvironmentVariable(StoreVariable);
    if (name.isEmpty()) {
        throw UsageError(QStringLiteral("请用 --store 或环境变量 QAV_STORE 指定数据库"));
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
            throw UsageError(found.empty() ? QStringLiteral("数据库中还没有分系统")
                                           : QStringLiteral("数据库中有多个分系统，请用 --server 指定"));
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
        throw Refusal(EErrorCode::NotFound, "分系统“" + wanted + "”不存在");
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
        throw UsageError(QStringLiteral("--as 不能为空"));
    }
    if (onBehalfOf.size() > MaxNameLength || hasInvisibleCharacters(onBehalfOf)) {
        throw UsageError(
            QStringLiteral("--as 不能超过%1个字符，也不能包含换行、控制字符或不可见字符").arg(MaxNameLength));
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
    printLine(stderr, first.isEmpty() ? QStringLiteral("请指定命令")
                                      : QStringLiteral("未知命令：") + (isGroup ? both.trimmed() : first));
    printLine(stderr, overview(commands, isGroup ? first : QString()));
    return WrongUse;
}

} // namespace service
