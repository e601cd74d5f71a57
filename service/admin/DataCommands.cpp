// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/PartialFile.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"
#include "service/engine/Refusal.h"
#include "service/import/Exporter.h"
#include "service/import/Importer.h"
#include "service/store/StoreError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <cstdio>
#include <memory>

namespace service
{

namespace
{

struct DataFile {
    EImportFile file;
    const char* key; ///< the option, in JSON, and the name of the file in a directory
    const char* title;
    std::optional<QByteArray> ImportFiles::* content;
};

constexpr std::array<DataFile, 6> DataFiles = {
    {{EImportFile::Institutions, "institutions", "机构", &ImportFiles::institutions},
     {EImportFile::Categories, "categories", "证券分类", &ImportFiles::categories},
     {EImportFile::Securities, "securities", "证券", &ImportFiles::securities},
     {EImportFile::Accounts, "accounts", "账号", &ImportFiles::accounts},
     {EImportFile::Products, "products", "产品", &ImportFiles::products},
     {EImportFile::Groups, "groups", "账号组", &ImportFiles::groups}}};

struct OutcomeText {
    EImportOutcome outcome;
    const char* key;
    const char* title;
};

constexpr std::array<OutcomeText, 4> Outcomes = {{{EImportOutcome::Added, "added", "新增"},
                                                  {EImportOutcome::Changed, "changed", "变更"},
                                                  {EImportOutcome::Unchanged, "unchanged", "不变"},
                                                  {EImportOutcome::Refused, "refused", "错误"}}};

/// The file names on the command line, by index in `DataFiles`; empty for files that are not named. A directory names
/// all files, or the existing ones.
std::array<QString, DataFiles.size()> filesOf(const Invocation& call, bool hasToExist)
{
    std::array<QString, DataFiles.size()> names;
    bool isAny = false;
    for (std::size_t i = 0; i < DataFiles.size(); ++i) {
        names[i] = call.value(DataFiles[i].key);
        if (names[i].isEmpty() && call.isSet("directory")) {
            const QString name =
                QDir(call.requiredValue("directory")).filePath(QLatin1String(DataFiles[i].key)) + ".csv";
            if (!hasToExist || QFileInfo::exists(name)) {
                names[i] = name;
            }
        }
        isAny = isAny || !names[i].isEmpty();
    }
    if (!isAny) {
        throw UsageError(call.isSet("directory") ? QStringLiteral("目录中没有可导入的文件：") + call.value("directory")
                                                 : QStringLiteral("请指定文件或目录（--directory）"));
    }
    return names;
}

QByteArray readWhole(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        throw UsageError(QStringLiteral("无法读取文件：%1（%2）").arg(name, file.errorString()));
    }
    return file.readAll();
}

const DataFile& entryOf(EImportFile file)
{
    return DataFiles.at(static_cast<std::size_t>(file));
}

const OutcomeText& entryOf(EImportOutcome outcome)
{
    return Outcomes.at(static_cast<std::size_t>(outcome));
}

QJsonObject jsonOf(const ImportReport& report)
{
    QJsonArray rows;
    for (const ImportRow& row : report.rows) {
        QJsonArray changes;
        for (const ImportChange& change : row.changes) {
            changes.append(
                QJsonObject{{"column", change.column}, {"before", Cell(change.before)}, {"after", Cell(change.after)}});
        }
        rows.append(QJsonObject{{"file", entryOf(row.file).key},
                                {"line", row.line},
                                {"outcome", entryOf(row.outcome).key},
                                {"key", Cell(row.key)},
                                {"reason", Cell(row.reason)},
                                {"changes", changes}});
    }
    QJsonObject json{{"stored", report.isStored}, {"rows", rows}, {"notes", QJsonArray::fromStringList(report.notes)}};
    for (const OutcomeText& outcome : Outcomes) {
        json.insert(QLatin1String(outcome.key), report.count(outcome.outcome));
    }
    return json;
}

QString textOf(const ImportRow& row)
{
    QString text =
        QStringLiteral("%1 第%2行 %3 %4")
            .arg(entryOf(row.file).title, QString::number(row.line), entryOf(row.outcome).title, shown(row.key));
    if (!row.reason.empty()) {
        text += ' ' + shown(row.reason);
    }
    for (const ImportChange& change : row.changes) {
        text += QStringLiteral("\n    %1：“%2” → “%3”").arg(change.column, shown(change.before), shown(change.after));
    }
    return text + '\n';
}

void printReport(const ImportReport& report, bool everyRow)
{
    for (const QString& note : report.notes) {
        printText(note + '\n');
    }
    for (const ImportRow& row : report.rows) {
        if (everyRow || row.outcome == EImportOutcome::Refused) {
            printText(textOf(row));
        }
    }
    QStringList counts;
    for (const OutcomeText& outcome : Outcomes) {
        counts << QStringLiteral("%1 %2").arg(outcome.title, QString::number(report.count(outcome.outcome)));
    }
    printText(counts.join(QStringLiteral("，")) +
              (report.isStored ? QStringLiteral("：已导入\n") : QStringLiteral("：未导入\n")));
}

/// For a new server the database may be new as well. A dry run does not create it.
Store& storeForImport(Invocation& call, ImportOptions& options, StorePtr& forTrial)
{
    if (!call.isSet("new-server")) {
        options.serverName = call.server().name;
        return call.store();
    }
    options.newSystemTag = call.requiredValue("new-server").toStdString();
    options.serverName = call.requiredValue("server").toStdString();
    if (!options.dryRun || !isMissing(call.storeName())) {
        return call.openStoreFor(EStoreUse::Create);
    }
    forTrial = openStore(QStringLiteral(":memory:"), EStoreUse::Create);
    return *forTrial;
}

utils::ETextEncoding encodingOf(const Invocation& call)
{
    const QString name = call.value("encoding");
    if (!call.isSet("encoding")) {
        return utils::ETextEncoding::Detected;
    }
    if (name == QLatin1String("utf-8")) {
        return utils::ETextEncoding::Utf8;
    }
    if (name == QLatin1String("gb18030")) {
        return utils::ETextEncoding::Gb18030;
    }
    throw UsageError(QStringLiteral("--encoding 应为 utf-8 或 gb18030：%1").arg(name));
}

int runImport(Invocation& call)
{
    const auto names = filesOf(call, true);
    ImportFiles files;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!names[i].isEmpty()) {
            files.*DataFiles[i].content = readWhole(names[i]);
        }
    }
    ImportOptions options;
    options.logIn = call.administrator();
    options.dryRun = call.isSet("dry-run");
    options.encoding = encodingOf(call);
    StorePtr forTrial;
    Store& store = storeForImport(call, options, forTrial);
    ImportReport report;
    {
        Progress bar(QStringLiteral("导入"));
        options.progress = bar.counter();
        report = importData(store, options, files);
    }
    const bool isRefusal = !report.rows.empty();
    if (!report.error.isSuccess() && !isRefusal) {
        throw StoreError(report.error.code(), report.error.errorMsg());
    }
    if (call.wantsJson()) {
        printJson(jsonOf(report));
    } else {
        printReport(report, options.dryRun);
    }
    if (report.error.isSuccess()) {
        return Done;
    }
    std::fprintf(stderr, "%s\n", report.error.errorMsg().c_str());
    return report.error.code() == utils::EErrorCode::StorageFailure ? StoreUnusable : Refused;
}

CsvFormat formatOf(const Invocation& call)
{
    CsvFormat format;
    const QString name = call.isSet("encoding") ? call.value("encoding") : QStringLiteral("utf-8");
    if (name == QLatin1String("utf-8-bom")) {
        format.encoding = ECsvEncoding::Utf8WithMark;
    } else if (name == QLatin1String("gb18030")) {
        format.encoding = ECsvEncoding::Gb18030;
    } else if (name != QLatin1String("utf-8")) {
        throw UsageError(QStringLiteral("--encoding 应为 utf-8、utf-8-bom 或 gb18030：%1").arg(name));
    }
    format.forSpreadsheets = call.isSet("spreadsheet");
    return format;
}

int runExport(Invocation& call)
{
    const auto names = filesOf(call, false);
    const CsvFormat format = formatOf(call);
    for (const QString& name : names) {
        if (!name.isEmpty()) {
            requireNewFile(name, call.isSet("force"), call.storeName());
        }
    }
    call.server(); // has to exist before a directory is made
    if (call.isSet("directory") && !QDir().mkpath(call.value("directory"))) {
        throw Refusal(utils::EErrorCode::Failed, "无法创建目录：" + call.value("directory").toStdString());
    }

    Table table({{"file", "文件"}, {"rows", "行数"}});
    std::vector<std::unique_ptr<PartialFile>> files;
    {
        Progress bar(QStringLiteral("导出"));
        Transaction snapshot(call.store().connection(), Transaction::EKind::Read);
        for (std::size_t i = 0; i < names.size(); ++i) {
            bar.show(static_cast<std::int64_t>(i), static_cast<std::int64_t>(names.size()));
            if (names[i].isEmpty()) {
                continue;
            }
            const ExportedFile exported = exportData(call.data(), DataFiles[i].file, format);
            files.push_back(std::make_unique<PartialFile>(names[i], call.isSet("force")));
            files.back()->write(exported.bytes);
            table.add({names[i], exported.rows});
        }
    }
    {
        const Uninterrupted allOrNone;
        for (const auto& file : files) {
            file->commit();
        }
    }
    return report(call, table);
}

void addFileOptions(Command& command, const char* what)
{
    for (const DataFile& file : DataFiles) {
        command.options.push_back({file.key, QStringLiteral("CSV file of %1%2.").arg(file.key, what), "file"});
    }
}

} // namespace

std::vector<Command> dataCommands()
{
    Command import("import", "Import master data and account groups from CSV files, all or nothing.", EStoreUse::Write,
                   runImport);
    import.hasJson = true;
    import.details = QStringList{
        "The files are UTF-8, with or without byte order mark, or GB18030; one that could be either is refused, unless "
        "--encoding tells. The first row names the columns, in Chinese or English. Everything is one transaction: one "
        "bad row, and nothing is stored. All rows are checked all the same, so that one run shows every reason. What "
        "exists already takes the values of the file; nothing is deleted.",
        "With --dry-run every row is reported: new, changed with the values before and after, unchanged, or refused "
        "and why; nothing is stored. Without it the refused rows are reported."};
    import.examples =
        QStringList{"import --server SH01 --directory data/ --dry-run",
                    "import --store qav.db --server 上海分系统 --new-server SH01 --accounts accounts.csv"};
    import.options = {{"dry-run", "Check and report every row, store nothing."},
                      {"encoding", "utf-8 or gb18030, for files from which it can't be told.", "encoding"},
                      {"new-server", "Create the sub-system that --server names, with this tag.", "tag"},
                      {"directory",
                       "Take institutions.csv, categories.csv, securities.csv, accounts.csv, products.csv and "
                       "groups.csv from this directory, those that are there.",
                       "directory"}};
    addFileOptions(import, "");

    Command exporting("export", "Export master data and account groups to CSV files.", EStoreUse::Read, runExport);
    exporting.details =
        QStringList{"All files show the same moment. What was exported can be imported again and changes nothing. The "
                    "files appear when all of them are complete. Groups without accounts are left out."};
    exporting.examples = QStringList{"export --server SH01 --directory data/ --encoding gb18030"};
    exporting.options = {{"directory", "Write one file of each kind into this directory.", "directory"},
                         {"encoding", "utf-8 (default), utf-8-bom or gb18030.", "encoding"},
                         {"spreadsheet", "Make the files safe in spreadsheets: codes stand as =\"0012\" and keep their "
                                         "zeros, names that would be calculated get an apostrophe in front."},
                         {"force", "Replace files that are there."}};
    addFileOptions(exporting, " to write");
    return {import, exporting};
}

} // namespace service
