// SPDX-License-Identifier: Apache-2.0
#include "service/import/CsvValues.h"
#include "service/import/ImportContext.h"

#include <nvservice/CProductInfo.h>
#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <utils/Translation.h>

#include <algorithm>
#include <map>

namespace service
{

namespace
{

using nvservice::CProductInfo;

/// A stored product, with the changes of the rows so far.
struct Product {
    boost::shared_ptr<CProductInfo> record;
    InstitutionId institution;
    std::set<std::int64_t> members; ///< account rows
};

/// A product in the file.
struct ProductOfFile {
    StoredProduct wanted;
    bool isNew = false;
    Changes changes; ///< but for accounts
    bson::BSONObj before;
    std::map<std::int64_t, int> lineOfMember; ///< 0: the row without account
};

class ProductImporter
{
public:
    explicit ProductImporter(ImportContext& context) : m_context(context)
    {
        AccountsByRow accounts;
        std::unordered_map<std::string, std::int64_t> rowOfKey;
        for (const auto& [key, account] : context.accounts) {
            accounts.emplace(account.row, account.info);
            rowOfKey.emplace(key, account.row);
        }
        for (const auto& record : loadProducts(context, std::nullopt, accounts)) {
            Product& product = m_known[record->productId];
            product.record = record;
            for (const auto& account : record->accounts) {
                product.members.insert(rowOfKey.at(account->getKey()));
            }
            m_idOfName.emplace(record->productName, record->productId);
        }
        for (const auto& [id, institution] : loadProductInstitutions(context)) {
            m_known.at(static_cast<std::int32_t>(id)).institution = institution;
        }
    }

    void importRow(const TableRow& row)
    {
        const StoredProduct wanted = wantedProduct(row);
        const StoredAccount* account = nullptr;
        if (!row.field(EColumn::AccountId).isEmpty()) {
            account = &m_context.accountOf(row);
            if (wanted.institution && account->info->institutionId != *wanted.institution) {
                throw RowError(utils::text("service", "账号不属于产品的所属机构"));
            }
        }
        ProductOfFile& product = productOfFile(wanted);
        const auto [first, isFirst] = product.lineOfMember.emplace(account ? account->row : 0, row.line());
        if (!isFirst) {
            throw RowError(utils::filled(utils::text("service", "与第%1行重复"), first->second));
        }
        const bool isAdded = account && addMember(wanted.id, *account);
        Changes changes = product.changes;
        if (isAdded && !product.isNew) {
            changes.add(EColumn::AccountId, {}, nvservice::accountDisplayID(account->info));
        }
        m_context.report(EImportFile::Products, row.line(), changes.outcome(product.isNew), wanted.name, changes);
    }

    /// Audits each new or changed product.
    void audit()
    {
        for (const auto& [id, product] : m_inFile) {
            const Product& now = m_known.at(id);
            const bson::BSONObj after = nvservice::encodeRecord(*now.record);
            if (product.isNew || !product.changes.all().empty() || !product.before.binaryEqual(after)) {
                m_context.audit(product.isNew, nvservice::DataType::Product, now.record->getKey(), product.before,
                                after);
            }
        }
    }

private:
    StoredProduct wantedProduct(const TableRow& row) const
    {
        StoredProduct wanted;
        wanted.id = m_context.numberOf(row, EColumn::ProductId);
        wanted.name = m_context.textOf(row, EColumn::ProductName);
        wanted.institution = institutionOf(m_context.institutionOf(row));
        wanted.excluded = m_context.flagOf(row, EColumn::Excluded);
        const auto holder = m_idOfName.find(wanted.name);
        if (holder != m_idOfName.end() && holder->second != wanted.id) {
            throw RowError(
                utils::filled(utils::text("service", "产品名称“%1”已被产品%2使用"), wanted.name, holder->second));
        }
        return wanted;
    }

    /// Stores the product at its first row.
    ProductOfFile& productOfFile(const StoredProduct& wanted)
    {
        const auto found = m_inFile.find(wanted.id);
        if (found != m_inFile.end()) {
            const StoredProduct& first = found->second.wanted;
            if (first.name != wanted.name || first.institution != wanted.institution ||
                first.excluded != wanted.excluded) {
                throw RowError(utils::text("service", "同一产品的名称、所属机构或排除标志前后不一致"));
            }
            return found->second;
        }
        Product& product = m_known[wanted.id];
        ProductOfFile ofFile;
        ofFile.wanted = wanted;
        ofFile.isNew = !product.record;
        if (ofFile.isNew) {
            product.record = boost::make_shared<CProductInfo>();
            product.record->productId = wanted.id;
            product.record->setSystemTag(m_context.server.systemTag);
        } else {
            requireOwnAccounts(wanted, *product.record);
            ofFile.before = nvservice::encodeRecord(*product.record);
            ofFile.changes.add(EColumn::ProductName, product.record->productName, wanted.name);
            ofFile.changes.add(EColumn::Excluded, textOfFlag(product.record->excluded), textOfFlag(wanted.excluded));
            ofFile.changes.add(EColumn::Institution, nameOf(product.institution), nameOf(wanted.institution));
            m_idOfName.erase(product.record->productName);
        }
        product.record->productName = wanted.name;
        product.record->excluded = wanted.excluded;
        product.institution = wanted.institution;
        m_idOfName[wanted.name] = wanted.id;
        putProduct(m_context, wanted);
        return m_inFile.emplace(wanted.id, std::move(ofFile)).first->second;
    }

    std::string nameOf(const InstitutionId& institution) const
    {
        return institution ? m_context.institutions.at(*institution) : std::string();
    }

    static void requireOwnAccounts(const StoredProduct& wanted, const CProductInfo& record)
    {
        const auto isForeign = [&](const auto& account) { return account->institutionId != *wanted.institution; };
        if (wanted.institution && std::any_of(record.accounts.begin(), record.accounts.end(), isForeign)) {
            throw RowError(utils::text("service", "产品中已有其他机构的账号，不能变更所属机构"));
        }
    }

    bool addMember(std::int32_t productId, const StoredAccount& account)
    {
        Product& product = m_known.at(productId);
        if (!product.members.insert(account.row).second) {
            return false;
        }
        product.record->accounts.push_back(account.info);
        putProductAccount(m_context, productId, account.row);
        return true;
    }

    ImportContext& m_context;
    std::unordered_map<std::int32_t, Product> m_known;
    std::unordered_map<std::string, std::int32_t> m_idOfName;
    std::map<std::int32_t, ProductOfFile> m_inFile;
};

} // namespace

void importProducts(ImportContext& context, const QByteArray& bytes)
{
    ProductImporter importer(context);
    const std::vector<EColumn> required = {EColumn::ProductId, EColumn::ProductName};
    context.forEachRow(EImportFile::Products, bytes, required, [&](const TableRow& row) { importer.importRow(row); });
    importer.audit();
}

} // namespace service
