#include "service/import/Administrator.h"
#include "service/import/Importer.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <iostream>
#include <string>

namespace
{

enum ExitCode { Done = 0, Refused = 1, WrongUse = 2 };

bool readFile(const QCommandLineParser& parser, const char* option, std::optional<QByteArray>& content)
{
    const QString name = parser.value(QLatin1String(option));
    if (name.isEmpty())
        return true;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(name), qPrintable(file.errorString()));
        return false;
    }
    content = file.readAll();
    return true;
}

const char* textOf(service::EImportFile file)
{
    switch (file) {
    case service::EImportFile::Institutions:
        return "机构";
    case service::EImportFile::Accounts:
        return "账号";
    case service::EImportFile::Products:
        return "产品";
    case service::EImportFile::Groups:
        return "账号组";
    }
    return "";
}

const char* textOf(service::EImportOutcome outcome)
{
    switch (outcome) {
    case service::EImportOutcome::Added:
        return "新增";
    case service::EImportOutcome::Changed:
        return "变更";
    case service::EImportOutcome::Unchanged:
        return "不变";
    case service::EImportOutcome::Refused:
        return "错误";
    }
    return "";
}

void print(const service::ImportReport& report, bool everyRow)
{
    using service::EImportOutcome;
    for (const QString& note : report.notes)
        std::printf("%s\n", note.toUtf8().constData());
    for (const service::ImportRow& row : report.rows) {
        if (!everyRow && row.outcome != EImportOutcome::Refused)
            continue;
        std::printf("%s 第%d行 %s %s %s\n", textOf(row.file), row.line, textOf(row.outcome), row.key.c_str(),
                    row.reason.c_str());
    }
    std::printf("新增 %d，变更 %d，不变 %d，错误 %d：%s\n", report.count(EImportOutcome::Added),
                report.count(EImportOutcome::Changed), report.count(EImportOutcome::Unchanged),
                report.count(EImportOutcome::Refused), report.isStored ? "已导入" : "未导入");
    if (!report.error.isSuccess())
        std::fprintf(stderr, "%s\n", report.error.errorMsg().c_str());
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-import"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Imports institutions, accounts, products and account groups from CSV files."));
    parser.addHelpOption();
    parser.addOptions({{"database", "Database file; created when it is missing.", "file"},
                       {"server", "Sub-system that the data belongs to.", "name"},
                       {"new-server", "Create the sub-system, with this system tag.", "tag"},
                       {"admin", "Create a user with every right; the password is read from standard input.", "log-in"},
                       {"institutions", "CSV file of institutions.", "file"},
                       {"accounts", "CSV file of accounts.", "file"},
                       {"products", "CSV file of products.", "file"},
                       {"groups", "CSV file of account groups.", "file"},
                       {"dry-run", "Check and report every row, store nothing."}});
    parser.process(application);

    service::StoreOptions storeOptions;
    storeOptions.location = parser.value(QStringLiteral("database"));
    service::ImportOptions options;
    options.serverName = parser.value(QStringLiteral("server")).toStdString();
    options.newSystemTag = parser.value(QStringLiteral("new-server")).toStdString();
    options.dryRun = parser.isSet(QStringLiteral("dry-run"));
    if (storeOptions.location.isEmpty() || options.serverName.empty()) {
        std::fputs("--database and --server are needed\n", stderr);
        return WrongUse;
    }
    service::ImportFiles files;
    if (!readFile(parser, "institutions", files.institutions) || !readFile(parser, "accounts", files.accounts) ||
        !readFile(parser, "products", files.products) || !readFile(parser, "groups", files.groups))
        return WrongUse;

    utils::NVError error;
    const service::StorePtr store = service::Store::open(storeOptions, error);
    if (!store) {
        std::fprintf(stderr, "%s\n", error.errorMsg().c_str());
        return Refused;
    }
    const service::ImportReport report = service::importData(*store, options, files);
    print(report, options.dryRun);
    if (!report.error.isSuccess())
        return Refused;

    const std::string admin = parser.value(QStringLiteral("admin")).toStdString();
    if (!admin.empty() && !options.dryRun) {
        std::string password;
        std::getline(std::cin, password);
        error = service::createAdministrator(*store, options.serverName, admin, password);
        if (!error.isSuccess()) {
            std::fprintf(stderr, "%s\n", error.errorMsg().c_str());
            return Refused;
        }
    }
    return Done;
}
