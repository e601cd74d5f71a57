// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"
#include "support/TestProgram.h"

#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CProductInfo.h>

using namespace testservice;

/// Products come in as few records as can be sent.
class ProductQueriesTest : public QObject
{
    Q_OBJECT

private slots:
    void recordHoldsTenThousandAccountsAndNoProductIsCut_data()
    {
        const support::DataRows<int, int, QString> row("products", "accountsOfEach", "productsOfRecords");
        row("no products are one empty record", 0, 1, "0");
        row("ten thousand accounts fit", 10000, 1, "10000");
        row("one more begins the next record", 10001, 1, "10000,1");
        row("a product that fits only in part begins the next record", 6667, 3, "3333,3333,1");
        row("a product that never fits has a record of its own", 2, 10001, "1,1");
    }
    void recordHoldsTenThousandAccountsAndNoProductIsCut()
    {
        QFETCH(int, products);
        QFETCH(int, accountsOfEach);
        QFETCH(QString, productsOfRecords);
        ServiceFixture fixture;
        if (products > 0) {
            fixture.exec("INSERT INTO account (server_id, broker_type, account_id) " + numbers(accountsOfEach) +
                         " SELECT 1, 1, 'a' || i FROM n");
            fixture.exec("INSERT INTO product (server_id, product_id, name) " + numbers(products) +
                         " SELECT 1, i, 'p' || i FROM n");
            fixture.exec("INSERT INTO product_account (server_id, product_id, account_id) SELECT 1, product_id, a.id"
                         " FROM product, account a WHERE a.server_id = 1 AND a.account_id LIKE 'a%'");
        }
        const service::Reply reply = fixture.query(nvservice::DataType::Product);
        COMPARE_CODE(reply, EErrorCode::Success);
        QStringList found;
        int id = 0;
        for (const nvservice::IDataPtr& record : reply.records) {
            const auto list = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(record);
            found << QString::number(list->products.size());
            for (const nvservice::IDataPtr& each : list->products) {
                const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(each);
                QCOMPARE(product->productId, ++id);
                QCOMPARE(product->accounts.size(), static_cast<std::size_t>(accountsOfEach));
            }
        }
        QCOMPARE(found.join(','), productsOfRecords);
        QCOMPARE(id, products);
    }
};

TEST_WITHOUT_WIDGETS(ProductQueriesTest)
#include "tst_product_queries.moc"
