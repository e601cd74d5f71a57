// SPDX-License-Identifier: Apache-2.0
#include "ExemptFixture.h"

#include <WQ/CStandardSimpleTable.h>
#include <WQ/StringConversion.h>

#include <boost/make_shared.hpp>

namespace exempt_test
{

QAV::CategoryPtr makeCategory(int id, const std::string& name)
{
    const auto category = boost::make_shared<nvservice::CCategoryInfo>();
    category->categoryId = id;
    category->categoryName = name;
    return category;
}

QAV::CategoryList makeCategories(const std::vector<std::string>& names)
{
    QAV::CategoryList categories;
    for (const std::string& name : names) {
        categories.push_back(makeCategory(int(categories.size()), name));
    }
    return categories;
}

QAV::CategoryList makeManyCategories(int count)
{
    const std::vector<std::string> regions{"沪市", "深市", "北交所", "港股通", "银行间", "中金所", "上期所", "郑商所"};
    const std::vector<std::string> kinds{"主板股票", "国债",     "企业债",   "可转债",
                                         "商品期货", "股指期权", "货币基金", "资产支持证券"};
    QAV::CategoryList categories;
    categories.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        const auto n = std::size_t(i);
        categories.push_back(makeCategory(i, regions[n % regions.size()] + kinds[n / regions.size() % kinds.size()] +
                                                 std::to_string(i) + "号"));
    }
    return categories;
}

QStringList namesOf(const QAV::CategoryList& categories)
{
    QStringList names;
    for (const QAV::CategoryPtr& category : categories) {
        names << (category ? WQ::sToQs(category->categoryName) : QStringLiteral("(null)"));
    }
    return names;
}

QList<int> idsOf(const QAV::CategoryList& categories)
{
    QList<int> ids;
    for (const QAV::CategoryPtr& category : categories) {
        ids << (category ? category->categoryId : -1);
    }
    return ids;
}

WQ::CStandardSimpleTable* tableOf(const QWidget& root, int tableId)
{
    for (WQ::CStandardSimpleTable* const table : root.findChildren<WQ::CStandardSimpleTable*>()) {
        if (table->tableId() == tableId) {
            return table;
        }
    }
    return nullptr;
}

void select(WQ::CStandardSimpleTable& table, const QList<int>& positions)
{
    for (const int position : positions) {
        table.setRowSelected(table.rowID(position), true);
    }
}

} // namespace exempt_test
