// SPDX-License-Identifier: Apache-2.0
#include "service/engine/TradeLimitRules.h"
#include "service/import/CsvValues.h"
#include "service/import/ImportContext.h"
#include "service/store/Securities.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <utils/Translation.h>

#include <map>

namespace service
{

namespace
{

using nvservice::CCategoryInfo;
using nvservice::CSecurityInfo;
using utils::EErrorCode;

constexpr std::int32_t TopCategory = -1;

std::string textOfParent(std::int32_t parent)
{
    return parent == TopCategory ? std::string() : std::to_string(parent);
}

class CategoryImporter
{
public:
    explicit CategoryImporter(ImportContext& context) : m_context(context)
    {
        for (const auto& category : loadCategories(context)) {
            m_stored.emplace(category->categoryId, *category);
        }
    }

    /// Reads a row. Categories are stored after the last row, because parents may come later.
    void readRow(const TableRow& row)
    {
        CCategoryInfo category;
        category.categoryId = m_context.numberOf(row, EColumn::CategoryId);
        category.categoryName = m_context.textOf(row, EColumn::CategoryName);
        category.categoryType = m_context.countOf(row, EColumn::CategoryType);
        category.sysType = m_context.countOf(row, EColumn::SysType);
        if (!row.field(EColumn::ParentCategory).isEmpty()) {
            category.parentId = m_context.numberOf(row, EColumn::ParentCategory);
        }
        category.setSystemTag(m_context.server.systemTag);
        m_seen.add(std::to_string(category.categoryId), row.line());
        m_lines.emplace_back(row.line(), category.categoryId);
        m_wanted.emplace(category.categoryId, category);
    }

    void storeAll()
    {
        bool isTree = true;
        for (const auto& [line, id] : m_lines) {
            const std::string problem = problemAbove(id);
            if (!problem.empty()) {
                m_context.refuse(EImportFile::Categories, line, std::to_string(id), problem);
            }
            isTree = isTree && problem.empty();
        }
        if (!isTree) {
            return;
        }
        for (const auto& [line, id] : m_lines) {
            report(line, m_wanted.at(id));
            storeWithThoseAbove(id);
        }
    }

private:
    const CCategoryInfo* find(std::int32_t id) const
    {
        const auto wanted = m_wanted.find(id);
        if (wanted != m_wanted.end()) {
            return &wanted->second;
        }
        const auto stored = m_stored.find(id);
        return stored == m_stored.end() ? nullptr : &stored->second;
    }

    /// Why the ancestors of a category are invalid; empty if they are valid.
    std::string problemAbove(std::int32_t id) const
    {
        std::set<std::int32_t> above = {id};
        for (std::int32_t parent = find(id)->parentId; parent != TopCategory;) {
            const CCategoryInfo* const category = find(parent);
            if (!category) {
                return utils::filled(utils::text("service", "上级分类“%1”不存在"), parent);
            }
            if (!above.insert(parent).second) {
                return utils::text("service", "上级分类形成循环");
            }
            parent = category->parentId;
        }
        return {};
    }

    void report(int line, const CCategoryInfo& category)
    {
        const auto old = m_stored.find(category.categoryId);
        const bool isNew = old == m_stored.end();
        Changes changes;
        if (!isNew) {
            const CCategoryInfo& before = old->second;
            changes.add(EColumn::CategoryName, before.categoryName, category.categoryName);
            changes.add(EColumn::CategoryType, std::to_string(before.categoryType),
                        std::to_string(category.categoryType));
            changes.add(EColumn::SysType, std::to_string(before.sysType), std::to_string(category.sysType));
            changes.add(EColumn::ParentCategory, textOfParent(before.parentId), textOfParent(category.parentId));
        }
        m_context.report(EImportFile::Categories, line, changes.outcome(isNew), category.categoryName, changes);
    }

    /// A stored category can only refer to a stored parent.
    void storeWithThoseAbove(std::int32_t id)
    {
        std::vector<std::int32_t> way;
        for (; id != TopCategory && m_done.insert(id).second && m_wanted.count(id) != 0;
             id = m_wanted.at(id).parentId) {
            way.push_back(id);
        }
        for (auto next = way.rbegin(); next != way.rend(); ++next) {
            store(m_wanted.at(*next));
        }
    }

    void store(const CCategoryInfo& category)
    {
        const auto old = m_stored.find(category.categoryId);
        const bool isNew = old == m_stored.end();
        const bson::BSONObj before = isNew ? bson::BSONObj() : nvservice::encodeRecord(old->second);
        const bson::BSONObj after = nvservice::encodeRecord(category);
        if (before.binaryEqual(after)) {
            return;
        }
        putCategory(m_context, category);
        m_context.audit(isNew, nvservice::DataType::Category, category.getKey(), before, after);
    }

    ImportContext& m_context;
    SeenKeys m_seen;
    std::map<std::int32_t, CCategoryInfo> m_stored;
    std::map<std::int32_t, CCategoryInfo> m_wanted;
    std::vector<std::pair<int, std::int32_t>> m_lines; ///< line and category
    std::set<std::int32_t> m_done;
};

CSecurityInfo securityOf(const ImportContext& context, const TableRow& row)
{
    CSecurityInfo security;
    security.market = context.codeOf(row, EColumn::Market);
    security.securityCode = context.codeOf(row, EColumn::SecurityCode);
    security.securityName = row.field(EColumn::SecurityName).toStdString();
    for (const std::string& problem :
         {securityCodeProblem(security.securityCode), securityNameProblem(security.securityName)}) {
        if (!problem.empty()) {
            throw RowError(problem);
        }
    }
    security.sysType = context.countOf(row, EColumn::SysType);
    const QString type = row.field(EColumn::TraderType);
    const auto traderType = readTraderType(type);
    if (!traderType) {
        throw RowError(utils::filled(utils::text("service", "交易类型“%1”无效"), type.toStdString()));
    }
    security.traderType = *traderType;
    security.setSystemTag(context.server.systemTag);
    return security;
}

Changes changesOf(const CSecurityInfo& before, const CSecurityInfo& after)
{
    Changes changes;
    changes.add(EColumn::SecurityName, before.securityName, after.securityName);
    changes.add(EColumn::SysType, std::to_string(before.sysType), std::to_string(after.sysType));
    changes.add(EColumn::TraderType, textOfTraderType(before.traderType), textOfTraderType(after.traderType));
    return changes;
}

} // namespace

void importCategories(ImportContext& context, const QByteArray& bytes)
{
    CategoryImporter importer(context);
    const std::vector<EColumn> required = {EColumn::CategoryId, EColumn::CategoryName, EColumn::SysType};
    context.forEachRow(EImportFile::Categories, bytes, required, [&](const TableRow& row) { importer.readRow(row); });
    importer.storeAll();
}

void importSecurities(ImportContext& context, const QByteArray& bytes)
{
    SeenKeys seen;
    std::unordered_map<std::string, CSecurityInfo> stored;
    for (const auto& security : loadSecurities(context, std::nullopt)) {
        stored.emplace(security->getKey(), *security);
    }
    const std::vector<EColumn> required = {EColumn::SecurityCode, EColumn::Market, EColumn::SecurityName};
    context.forEachRow(EImportFile::Securities, bytes, required, [&](const TableRow& row) {
        const CSecurityInfo security = securityOf(context, row);
        const std::string key = security.getKey();
        seen.add(key, row.line());
        const auto old = stored.find(key);
        const bool isNew = old == stored.end();
        const Changes changes = isNew ? Changes() : changesOf(old->second, security);
        const EImportOutcome outcome = changes.outcome(isNew);
        if (outcome != EImportOutcome::Unchanged) {
            putSecurity(context, security);
            context.audit(isNew, nvservice::DataType::Security, key,
                          isNew ? bson::BSONObj() : nvservice::encodeRecord(old->second),
                          nvservice::encodeRecord(security));
        }
        context.report(EImportFile::Securities, row.line(), outcome, security.market + " " + security.securityCode,
                       changes);
    });
}

} // namespace service
