// SPDX-License-Identifier: Apache-2.0
#include "service/import/Importer.h"
#include "service/engine/Refusal.h"
#include "service/engine/Servers.h"
#include "service/import/ImportContext.h"

#include <utils/Translation.h>

#include <QDateTime>

#include <algorithm>

namespace service
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

SubSystem requireServer(Connection& connection, const ImportOptions& options)
{
    const std::optional<SubSystem> known = findSubSystem(connection, options.serverName);
    if (known && !options.newSystemTag.empty()) {
        throw StoreError(EErrorCode::Duplicate,
                         utils::filled(utils::text("service", "分系统“%1”已存在"), options.serverName));
    }
    if (known) {
        return *known;
    }
    if (options.newSystemTag.empty()) {
        throw StoreError(EErrorCode::NotFound,
                         utils::filled(utils::text("service", "分系统“%1”不存在"), options.serverName));
    }
    return createServer(connection, options.serverName, options.newSystemTag, options.logIn,
                        QDateTime::currentMSecsSinceEpoch());
}

struct Import {
    std::optional<QByteArray> ImportFiles::* file;
    void (*run)(ImportContext& context, const QByteArray& bytes);
};

/// In the order of `EImportFile`.
constexpr Import Imports[] = {
    {&ImportFiles::institutions, &importInstitutions}, {&ImportFiles::categories, &importCategories},
    {&ImportFiles::securities, &importSecurities},     {&ImportFiles::accounts, &importAccounts},
    {&ImportFiles::products, &importProducts},         {&ImportFiles::groups, &importGroups}};

/// The approximate number of rows in the files.
std::int64_t rowsOf(const ImportFiles& files)
{
    std::int64_t rows = 0;
    for (const Import& import : Imports) {
        rows += (files.*import.file).value_or(QByteArray()).count('\n');
    }
    return rows;
}

} // namespace

int ImportReport::count(EImportOutcome outcome) const
{
    return static_cast<int>(
        std::count_if(rows.begin(), rows.end(), [outcome](const ImportRow& row) { return row.outcome == outcome; }));
}

ImportReport importData(Store& store, const ImportOptions& options, const ImportFiles& files)
{
    ImportReport report;
    try {
        Connection& connection = store.connection();
        const std::lock_guard<std::mutex> turn(store.writeMutex());
        Transaction transaction(connection, Transaction::EKind::Write);
        const SubSystem server = requireServer(connection, options);
        ImportContext context({connection, server}, options, rowsOf(files), report);
        for (const Import& import : Imports) {
            if (files.*import.file) {
                import.run(context, *(files.*import.file));
            }
        }
        std::stable_sort(report.rows.begin(), report.rows.end(), [](const ImportRow& a, const ImportRow& b) {
            return std::make_pair(a.file, a.line) < std::make_pair(b.file, b.line);
        });
        const int refused = report.count(EImportOutcome::Refused);
        if (refused > 0) {
            report.error = NVError(EErrorCode::InvalidValue,
                                   utils::text("service", "有%n处错误，未导入任何数据", nullptr, refused));
        } else if (!options.dryRun) {
            transaction.commit();
            report.isStored = true;
        }
    } catch (const StoreError& failure) {
        report.error = failure.fullError();
    } catch (const Refusal& refusal) {
        report.error = refusal.error();
    }
    return report;
}

} // namespace service
