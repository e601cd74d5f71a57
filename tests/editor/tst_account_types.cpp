// SPDX-License-Identifier: Apache-2.0
#include "editor/AccountType.h"
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"

using namespace editor_test;

namespace
{

struct TypeRow {
    int value;
    const char* name;
    const char* module; ///< null: offered to nobody
    int right;
};

/// Written out here once more, on its own: what the users of the installation were promised.
const TypeRow Types[] = {
    {1, "期货账号", "mdl_tradetype_future", 10037},
    {2, "证券账号", "mdl_tradetype_stock", 10041},
    {3, "信用账号", "mdl_tradetype_credit", 10089},
    {4, "贵金属账号", "mdl_tradetype_gold", 12091},
    {5, "期货期权账号", "mdl_tradetype_futures_option", 10871},
    {6, "股票期权账号", "mdl_tradetype_option", 10657},
    {7, "沪港通账号", "mdl_tradetype_ggt", 10745},
    {10, "全国股转账号", "mdl_tradetype_neeq", 10953},
    {11, "深港通账号", "mdl_tradetype_sgt", 11501},
    {12, "全业务账号", nullptr, 0},
    {13, "理财账号", nullptr, 0},
    {1001, "外盘期货账号", "mdl_tradetype_outter", 10817},
    {1002, "IB外盘账号", "mdl_tradetype_ib", 12001},
    {15002, "银行间账号", "mdl_tradetype_interbank", 13091},
};

QString everyModuleBut(const char* missing)
{
    QStringList modules;
    for (const TypeRow& row : Types) {
        if (row.module && (!missing || qstrcmp(row.module, missing) != 0)) {
            modules << QString("%1 = true").arg(row.module);
        }
    }
    return "return { mdl_tradetype = { " + modules.join(", ") + " } }";
}

std::set<int> everyRightBut(int missing)
{
    std::set<int> rights;
    for (const TypeRow& row : Types) {
        rights.insert(row.right);
    }
    rights.insert(0);
    rights.erase(missing);
    return rights;
}

} // namespace

/// Which account types the picker knows and offers.
class AccountTypesTest : public EditorTest
{
    Q_OBJECT

private slots:
    void everyTypeHasItsName_data() { typeRows(); }

    void everyTypeHasItsName()
    {
        QFETCH(int, index);
        QCOMPARE(QAV::accountTypeName(Types[index].value), QString::fromUtf8(Types[index].name));
    }

    void aTypeIsOfferedWithModuleAndRightOnly_data()
    {
        const support::DataRows<int, bool, bool> row("index", "module", "right");
        for (int i = 0; i < int(std::size(Types)); ++i) {
            for (const bool module : {true, false}) {
                for (const bool right : {true, false}) {
                    row(QString("%1, module %2, right %3").arg(Types[i].name).arg(module).arg(right), i, module, right);
                }
            }
        }
    }
    void aTypeIsOfferedWithModuleAndRightOnly()
    {
        QFETCH(int, index);
        QFETCH(bool, module);
        QFETCH(bool, right);
        const TypeRow& type = Types[index];
        // All other modules and rights are there, so that only this type's own ones can make the difference.
        support::switchModules(everyModuleBut(module ? nullptr : type.module));
        m_client->logIn(nvservice::NoInstitutionId, {}, everyRightBut(right ? -1 : type.right));
        const bool offered = module && right && type.module;
        QCOMPARE(QAV::isAccountTypeOffered(type.value), offered);
        QCOMPARE(typesOfPicker().contains(QString::number(type.value)), offered);
    }

    void otherValuesHaveNoNameAndAreNotOffered_data()
    {
        const support::DataRows<int> row("value");
        for (const int value : {-1, 0, 8, 9, 14, 1000, 1003, 15001, 15003, 2147483647}) {
            row(QString::number(value), value);
        }
    }
    void otherValuesHaveNoNameAndAreNotOffered()
    {
        QFETCH(int, value);
        support::switchModules(everyModuleBut(nullptr));
        m_client->logIn(nvservice::NoInstitutionId, {}, everyRightBut(-1));
        QCOMPARE(QAV::accountTypeName(value), QString());
        QVERIFY(!QAV::isAccountTypeOffered(value));
    }

    void typesStandInAscendingOrderOfTheirValues()
    {
        support::switchModules(everyModuleBut(nullptr));
        m_client->logIn(nvservice::NoInstitutionId, {}, everyRightBut(-1));
        QCOMPARE(typesOfPicker(),
                 QStringList({"1", "2", "3", "4", "5", "6", "7", "10", "11", "1001", "1002", "15002"}));
    }

    void typesWithoutAnOfferNeverAppear()
    {
        support::switchModules(everyModuleBut(nullptr));
        m_client->logIn(nvservice::NoInstitutionId, {}, everyRightBut(-1));
        QAV::CSelectAccountDialog picker(nullptr);
        picker.setAccounts({makeWrapper(makeAccount(12, "a", ShanghaiTag)),
                            makeWrapper(makeAccount(13, "b", ShanghaiTag)),
                            makeWrapper(makeAccount(0, "c", ShanghaiTag))},
                           {makeAccount(0, "c", ShanghaiTag)});
        QCOMPARE(picker.findChild<WQ::CComboBox*>()->count(), 0);
        QCOMPARE(picker.findChild<QAV::CUserCombobox*>()->itemCount(), 0);
        AccountList selected{makeAccount(1, "old", ShanghaiTag)};
        picker.selectedAccounts(selected);
        QCOMPARE(selected.size(), std::size_t(0));
    }

    void withoutTheTradeTypeModuleNothingIsOffered()
    {
        support::switchModules(everyModuleBut(nullptr).replace("mdl_tradetype = {", "mdl_tradetype = { on = false, "));
        m_client->logIn(nvservice::NoInstitutionId, {}, everyRightBut(-1));
        QCOMPARE(typesOfPicker(), QStringList());
    }

private:
    void typeRows()
    {
        const support::DataRows<int> row("index");
        for (int i = 0; i < int(std::size(Types)); ++i) {
            row(Types[i].name, i);
        }
    }

    /// The types that a picker with accounts of every value offers.
    QStringList typesOfPicker()
    {
        QAV::CSelectAccountDialog picker(nullptr);
        QAV::CandidateList candidates;
        for (const int value : {15002, 9, 13, 1, 12, 1002, 3, 0, 1001, 11, 2, -1, 10, 7, 5, 8, 4, 6, 99}) {
            candidates.push_back(makeWrapper(makeAccount(value, "a", ShanghaiTag)));
        }
        picker.setAccounts(candidates, {});
        const auto* const box = picker.findChild<WQ::CComboBox*>();
        QStringList types;
        for (int i = 0; i < box->count(); ++i) {
            types << box->itemData(i).toString();
        }
        return types;
    }
};

TEST_WITH_WIDGETS(AccountTypesTest)
#include "tst_account_types.moc"
