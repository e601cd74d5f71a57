#pragma once

#include "service/admin/ExitCode.h"
#include "service/store/Store.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace service
{

class Invocation;

/// What a command asks of the store before it runs.
enum class EStoreUse {
    None,
    Named,  ///< is named, but opened by the command itself
    Read,   ///< opened for reading; a database of another version is refused
    Write,  ///< opened for writing and brought up to date; it has to be there
    Create, ///< the same, but a missing file is created
};

struct Argument {
    QString name;
    QString description;
    bool isRepeated = false; ///< one or more values instead of exactly one
};

/// One sub-command of the tool. Help and manual are made of the same description.
struct Command {
    QString name; ///< one or two words: "audit", "user add"
    QString summary;
    QStringList details;  ///< paragraphs
    QStringList examples; ///< what follows the name of the program
    EStoreUse storeUse = EStoreUse::None;
    bool hasServer = false; ///< works on one sub-system: has --server
    bool hasJson = false;   ///< reads or reports: has --json
    bool isAudited = false; ///< changes the store, but opens it itself; other changes tell by their use of the store
    std::vector<Argument> arguments;
    std::vector<QCommandLineOption> options;
    std::function<int(Invocation&)> run;

    bool isChange() const { return storeUse == EStoreUse::Write || storeUse == EStoreUse::Create || isAudited; }
    /// Its own options and those that its properties bring along.
    std::vector<QCommandLineOption> allOptions() const;
};

/// The arguments as a usage names them, each after a blank.
QString argumentsOf(const Command& command);

/// The command line can't be understood; the text says why.
class UsageError : public std::exception
{
public:
    explicit UsageError(const QString& text) : m_text(text.toStdString()) {}
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    std::string m_text;
};

/// A command that was called.
class Invocation
{
public:
    Invocation(const Command& command, const QCommandLineParser& parser, const QStringList& arguments);

    bool isSet(const char* option) const { return m_parser.isSet(QLatin1String(option)); }
    QString value(const char* option) const { return m_parser.value(QLatin1String(option)); }
    /// A whole number of the option, or `otherwise` when it isn't given. Throws `UsageError`.
    std::int64_t number(const char* option, std::int64_t otherwise) const;
    /// Throws `UsageError` when the option isn't given.
    QString requiredValue(const char* option) const;
    const QStringList& arguments() const { return m_arguments; }
    bool wantsJson() const { return m_command.hasJson && isSet("json"); }

    /// The store as the command line or the environment names it. Throws `UsageError` when neither does.
    QString storeName() const;
    /// Opened at the first call, as the command uses it. Throws `StoreError`.
    Store& store();
    /// The same, for a use that only the options tell.
    Store& openStoreFor(EStoreUse use);
    /// The sub-system that --server names, or the only one. The first call reads the store, outside any transaction.
    /// Throws `UsageError`, `Refusal`, `StoreError`.
    const SubSystem& server();
    /// Under which name changes are audited (`administratorName`). Throws `UsageError` for an unfit --as.
    std::string administrator() const;

private:
    const Command& m_command;
    const QCommandLineParser& m_parser;
    QStringList m_arguments;
    SubSystem findServer();

    StorePtr m_store;
    std::optional<SubSystem> m_server;
};

/// Opens the store that has to be there, unless it may be created. Throws `StoreError`.
StorePtr openStore(const QString& name, EStoreUse use, int waitSeconds = 10);
/// Whether the name is that of a file that isn't there.
bool isMissing(const QString& storeName);

/// Finds the command, checks options and arguments, runs it. Results go to standard output, everything else to standard
/// error. Gives the exit code.
int runCommandLine(const std::vector<Command>& commands, const QStringList& arguments);

} // namespace service
