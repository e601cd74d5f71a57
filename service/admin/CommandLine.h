// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/ExitCode.h"
#include "service/store/ServerData.h"

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

/// How a command uses the store.
enum class EStoreUse {
    None,
    Named,  ///< only named; the command opens it itself
    Read,   ///< opened for reading; a database of another version is refused
    Write,  ///< opened for writing and migrated; it must exist
    Create, ///< the same, but a missing file is created
};

struct Argument {
    QString name;
    QString description;
    bool isRepeated = false; ///< true: one or more values; false: exactly one
};

/// One sub-command of the tool. The help and the manual page are generated from it.
struct Command {
    /// A command that reads has --server and --json, one that writes has --server, unless the fields are set otherwise.
    Command(const char* theName, QString theSummary, EStoreUse use, std::function<int(Invocation&)> function)
        : name(QLatin1String(theName)), summary(std::move(theSummary)), storeUse(use),
          hasServer(use == EStoreUse::Read || use == EStoreUse::Write), hasJson(use == EStoreUse::Read),
          run(std::move(function))
    {
    }

    QString name; ///< one or two words: "audit", "user add"
    QString summary;
    QStringList details;  ///< paragraphs
    QStringList examples; ///< without the name of the program
    EStoreUse storeUse;
    bool hasServer;         ///< works on one sub-system: has --server
    bool hasJson;           ///< has results: has --json
    bool isAudited = false; ///< changes the store, but opens it itself; for others `storeUse` says whether they do
    std::vector<Argument> arguments;
    std::vector<QCommandLineOption> options;
    std::function<int(Invocation&)> run;

    bool isChange() const { return storeUse == EStoreUse::Write || storeUse == EStoreUse::Create || isAudited; }
    /// Its own options and those that follow from its properties.
    std::vector<QCommandLineOption> allOptions() const;
};

/// The arguments for the usage line, each after a blank.
QString argumentsOf(const Command& command);

/// Thrown for an invalid command line; the text says why.
class UsageError : public std::exception
{
public:
    explicit UsageError(const QString& text) : m_text(text.toStdString()) {}
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    std::string m_text;
};

/// One call of a command.
class Invocation
{
public:
    Invocation(const Command& command, const QCommandLineParser& parser, const QStringList& arguments);

    bool isSet(const char* option) const { return m_parser.isSet(QLatin1String(option)); }
    QString value(const char* option) const { return m_parser.value(QLatin1String(option)); }
    /// The integer value of the option, or `otherwise` if it is not given. Throws `UsageError`.
    std::int64_t number(const char* option, std::int64_t otherwise) const;
    /// Throws `UsageError` if the option is not given.
    QString requiredValue(const char* option) const;
    const QStringList& arguments() const { return m_arguments; }
    bool wantsJson() const { return m_command.hasJson && isSet("json"); }

    /// The store named by the command line or the environment. Throws `UsageError` if there is none.
    QString storeName() const;
    /// The store, opened at the first call as the command's `storeUse` says. Throws `StoreError`.
    Store& store();
    /// The same for a use that depends on the options.
    Store& openStoreFor(EStoreUse use);
    /// The sub-system given by --server, or the only one. The first call reads the store, outside any transaction.
    /// Throws `UsageError`, `Refusal`, `StoreError`.
    const SubSystem& server();
    /// The sub-system given by --server; without it all. Throws as `server` does.
    std::vector<SubSystem> servers();
    /// The data of that sub-system in the store.
    ServerData data();
    /// The name for the audit (`administratorName`). Throws `UsageError` for an invalid --as.
    std::string administrator() const;

private:
    const Command& m_command;
    const QCommandLineParser& m_parser;
    QStringList m_arguments;
    StorePtr m_store;
    std::optional<SubSystem> m_server;
};

/// Opens the store, which must exist unless `use` allows to create it. Throws `StoreError`.
StorePtr openStore(const QString& name, EStoreUse use, int waitSeconds = 10);

/// Finds the command, checks its options and arguments, and runs it. Results go to standard output, everything else to
/// standard error. Returns the exit code.
int runCommandLine(const std::vector<Command>& commands, const QStringList& arguments);

} // namespace service
