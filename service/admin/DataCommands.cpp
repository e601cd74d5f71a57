// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/PartialFile.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"
#include "service/engine/Refusal.h"
#include "service/import/Exporter.h"
#include "service/import/Importer.h"
#include "service/store/StoreError.h"

#include <utils/Translation.h>

#include <QCoreApplication>
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
    {{EImportFile::Institutions, "institutions", QT_TRANSLATE_NOOP("service", "机构"), &ImportFiles::institutions},
     {EImportFile::Categories, "categories", QT_TRANSLATE_NOOP("service", "证券分类"), &ImportFiles::categories},
     {EImportFile::Securities, "securities", QT_TRANSLATE_NOOP("service", "证券"), &ImportFiles::securities},
     {EImportFile::Accounts, "accounts", QT_TRANSLATE_NOOP("service", "账号"), &ImportFiles::accounts},
     {EImportFile::Products, "products", QT_TRANSLATE_NOOP("service", "产品"), &ImportFiles::products},
     {EImportFile::Groups, "groups", QT_TRANSLATE_NOOP("service", "账号组"), &ImportFiles::groups}}};

struct OutcomeText {
    EImportOutcome outcome;
    const char* key;
    const char* title;
};

constexpr std::array<OutcomeText, 4> Outcomes = {
    {{EImportOutcome::Added, "added", QT_TRANSLATE_NOOP("service", "新增")},
     {EImportOutcome::Changed, "changed", QT_TRANSLATE_NOOP("service", "变更")},
     {EImportOutcome::Unchanged, "unchanged", QT_TRANSLATE_NOOP("service", "不变")},
     {EImportOutcome::Refused, "refused", QT_TRANSLATE_NOOP("service", "错误")}}};

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
        throw UsageError(
            call.isSet("directory")
                ? QCoreApplication::translate("service", "目录中没有可导入的文件：%1").arg(call.value("directory"))
                : QCoreApplication::translate("service", "请指定文件或目录（--directory）"));
    }
    return names;
}

QByteArray readWhole(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        throw UsageError(
            QCoreApplication::translate("service", "无法读取文件：%1（%2）").arg(name, file.errorString()));
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
    QString text = QCoreApplication::translate("service", "%1 第%2行 %3 %4")
                       .arg(QCoreApplication::translate("service", entryOf(row.file).title), QString::number(row.line),
                            QCoreApplication::translate("service", entryOf(row.outcome).title), shown(row.key));
    if (!row.reason.empty()) {
        text += ' ' + shown(row.reason);
    }
    for (const ImportChange& change : row.changes) {
        text += QCoreApplication::translate("service", "\n    %1：“%2” → “%3”")
                    .arg(change.label, shown(change.before), shown(change.after));
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
        counts << QStringLiteral("%1 %2").arg(QCoreApplication::translate("service", outcome.title),
                                              QString::number(report.count(outcome.outcome)));
    }
    const QString all = counts.join(QCoreApplication::translate("service", "，"));
    printText(report.isStored ? QCoreApplication::translate("service", "%1：已导入\n").arg(all)
                              : QCoreApplication::translate("service", "%1：未导入\n").arg(all));
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
    throw UsageError(QCoreApplication::translate("service", "--encoding 应为 utf-8 或 gb18030：%1").arg(name));
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
        Progress bar(QCoreApplication::translate("service", "导入"));
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
        throw UsageError(
            QCoreApplication::translate("service", "--encoding 应为 utf-8、utf-8-bom 或 gb18030：%1").arg(name));
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
        throw Refusal(utils::EErrorCode::Failed,
                      utils::filled(utils::text("service", "无法创建目录：%1"), call.value("directory").toStdString()));
    }

    Table table({{"file", QCoreApplication::translate("service", "文件")},
                 {"rows", QCoreApplication::translate("service", "行数")}});
    std::vector<std::unique_ptr<PartialFile>> files;
    {
        Progress bar(QCoreApplication::translate("service", "导出"));
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

void addFileOptions(Command& command, const QString& description)
{
    for (const DataFile& file : DataFiles) {
        command.options.push_back({file.key, description.arg(file.key), "file"});
    }
}

} // namespace

std::vector<Command> dataCommands()
{
    Command import(
        "import", QCoreApplication::translate("service", "从 CSV 文件导入基础数据和账号组，要么全部导入，要么都不导入"),
        EStoreUse::Write, runImport);
    import.hasJson = true;
    import.details = QStringList{
        QCoreApplication::translate(
            "service", "文件编码为 UTF-8（可带字节顺序标记）或 GB18030；两者皆可的文件会被拒绝，除非用 --encoding "
                       "指定。第一行是列名，中文或英文。全部导入是一个事务：只要有一行错误，就什么都不保存；其余各行仍"
                       "会检查，一次运行即可列出全部原因。已存在的记录采用文件中的值，不删除任何记录。"),
        QCoreApplication::translate(
            "service",
            "使用 --dry-run "
            "时列出每一行：新增、变更（及前后的值）、不变或错误（及原因），不保存任何内容；否则只列出错误的行。")};
    import.examples = QStringList{
        "import --server SH01 --directory data/ --dry-run",
        QCoreApplication::translate(
            "service", "import --store qav.db --server 上海分系统 --new-server SH01 --accounts accounts.csv")};
    import.options = {
        {"dry-run", QCoreApplication::translate("service", "检查并列出每一行，不保存")},
        {"encoding", QCoreApplication::translate("service", "utf-8 或 gb18030，用于无法判断编码的文件"), "encoding"},
        {"new-server", QCoreApplication::translate("service", "以该标识创建 --server 指定的分系统"), "tag"},
        {"directory",
         QCoreApplication::translate(
             "service", "从该目录读取已有的 "
                        "institutions.csv、categories.csv、securities.csv、accounts.csv、products.csv 和 groups.csv"),
         "directory"}};
    addFileOptions(import, QCoreApplication::translate("service", "%1 的 CSV 文件"));

    Command exporting("export", QCoreApplication::translate("service", "将基础数据和账号组导出为 CSV 文件"),
                      EStoreUse::Read, runExport);
    exporting.details =
        QStringList{QCoreApplication::translate("service", "全部文件反映同一时刻。导出的内容可以再次导入而不产生任何变"
                                                           "化。全部文件完成之后才会出现。没有账号的账号组不导出。")};
    exporting.examples = QStringList{"export --server SH01 --directory data/ --encoding gb18030"};
    exporting.options = {
        {"directory", QCoreApplication::translate("service", "在该目录中为每种数据写一个文件"), "directory"},
        {"encoding", QCoreApplication::translate("service", "utf-8（缺省）、utf-8-bom 或 gb18030"), "encoding"},
        {"spreadsheet",
         QCoreApplication::translate(
             "service", "使文件可以安全地用电子表格打开：代码写作 =\"0012\" 以保留前导零，会被当作公式的名称前加撇号")},
        {"force", QCoreApplication::translate("service", "替换已有的文件")}};
    addFileOptions(exporting, QCoreApplication::translate("service", "要写入的 %1 的 CSV 文件"));
    return {import, exporting};
}

} // namespace service
