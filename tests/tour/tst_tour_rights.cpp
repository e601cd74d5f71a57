// SPDX-License-Identifier: Apache-2.0
#include "GroupEditor.h"
#include "Hands.h"
#include "RiskSettings.h"
#include "TourTest.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QPushButton>

using namespace tour;

namespace
{

/// The room between search field and refresh button: without the add button, and with it.
constexpr int EmptyRoom = 15 + 20;
constexpr int RoomWithButton = 15 + 70 + 20;

const QStringList EveryType = {"期货账号",     "证券账号",     "信用账号",   "贵金属账号",
                               "期货期权账号", "股票期权账号", "沪港通账号", "全国股转账号",
                               "深港通账号",   "外盘期货账号", "IB外盘账号", "银行间账号"};

} // namespace

/// What users with fewer rights, users of one institution and installations with fewer modules see and can do, on three
/// servers.
class TourRightsTest : public TourTest
{
    Q_OBJECT

private slots:
    void initTestCase() { m_client = std::make_unique<TourClient>("6-rights"); }

    void cleanup()
    {
        m_client->switchModules();
        TourTest::cleanup();
    }

    void aUserWithoutRightsOnlyLooks()
    {
        start("viewer");
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
        QVERIFY(!findButton(m_client->panel(), "添加账号组"));
        QCOMPARE(roomAfterSearch(), EmptyRoom);
        verifyRowButtons({});
        m_client->pictures("without-rights");
    }

    void anEditorAddsAndEditsOnly()
    {
        start("editor");
        QCOMPARE(roomAfterSearch(), RoomWithButton);
        verifyRowButtons({"编辑"});
        m_client->picture("editor");
        QCOMPARE(offeredTypes(), EveryType);
        const QString future = database().usableAccounts(Shanghai, InstitutionId, Future).at(0);
        m_client->addGroup({adding([&](const GroupEditor& editor) {
                                editor.typeName("维护一组");
                                editor.typeInstitution("砚池");
                                editor.pick("期货账号", {future});
                                editor.save();
                            }),
                            box("提示", "添加账号组成功!", "确定")});
        QCOMPARE(database().group(Shanghai, "维护一组"), Institution + "|1|editor");
        const int id = database().groupId(Shanghai, "维护一组");
        QCOMPARE(database().newAudit(), QStringList(QString("SH01|editor|2|625|SH01|%1|0|").arg(id)));
    }

    void aUserForFuturesIsOfferedFuturesOnly()
    {
        start("futures");
        QCOMPARE(offeredTypes(), QStringList({"期货账号", "期货期权账号"}));
    }

    void aRiskUserSetsRisksOnly()
    {
        start("risk");
        QVERIFY(!findButton(m_client->panel(), "添加账号组"));
        verifyRowButtons({"风控设置"});
        const QString name = m_client->shown(NameColumn).at(0);
        const int id = database().groupId(Shanghai, name);
        playRiskSettings(*m_client, name, [&](const RiskSettings& settings) {
            settings.pickExempt("对敲交易设置", [&](QWidget& opened) {
                const CategoryPicker picker(opened);
                // Of the system types 1, 2 and 4 only.
                QCOMPARE(picker.offered().size(), 128 + 13 + 46 + 45);
                QVERIFY(!picker.offered().contains("期权") && !picker.offered().contains("港股通"));
                picker.take({"债券"});
                clickButton(opened, "保存");
            });
            play([&] { settings.save(); }, {box("提示", "保存成功", "确定")});
            settings.close();
        });
        QTRY_COMPARE_WITH_TIMEOUT(database().newAuditRows(), 2, 60000);
        QCOMPARE(database().newAudit().first(), QString("SH01|risk|0|7131|SH01|%1|0|").arg(id));
        QCOMPARE(database().riskConfig(Shanghai, id).ratProofSetting.washTradeExemptCategoryIds.size(), std::size_t(1));
    }

    void aDeleterDeletesOnly()
    {
        start("deleter");
        QVERIFY(!findButton(m_client->panel(), "添加账号组"));
        verifyRowButtons({"删除"});
        const QString name = m_client->shown(NameColumn).at(0);
        const int id = database().groupId(Shanghai, name);
        m_client->pressGroupButton(name, "删除",
                                   {box("提示", "确定要删除该项?", "是"), box("提示", "删除账号组成功!", "确定")});
        QCOMPARE(database().groupId(Shanghai, name), 0);
        QCOMPARE(database().newAudit(), QStringList(QString("SH01|deleter|3|625|SH01|%1|0|").arg(id)));
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }

    void aUserOfOneInstitutionWorksInItOnly()
    {
        start("bound");
        const QStringList own = database().groups(Shanghai, InstitutionId);
        QVERIFY(!own.isEmpty());
        QVERIFY(own.size() < database().groups(Shanghai).size());
        QCOMPARE(m_client->shownRows(), own);
        QVERIFY(!m_client->table().isColumnVisible(ServerColumn));
        verifyRowButtons({"风控设置", "编辑", "删除"});
        m_client->picture("bound-user");

        const QString future = database().usableAccounts(Shanghai, InstitutionId, Future).at(0);
        const QString foreign = database().usableAccounts(Shanghai, InstitutionId + 1, Future).at(0);
        m_client->addGroup({adding([&](const GroupEditor& editor) {
                                QVERIFY(!editor.institution().isVisible());
                                QVERIFY(!editor.institution().isEnabled());
                                QCOMPARE(editor.institution().text(), Institution);
                                QVERIFY(!editor.server());
                                editor.pick([&](QWidget& opened) {
                                    const AccountPicker picker(opened);
                                    choose(picker.type(), "期货账号");
                                    const QString offers = picker.offers().join(' ');
                                    QVERIFY(offers.contains(future) && !offers.contains(foreign));
                                    // The institution's accounts of every server are offered.
                                    picker.toggle({future}, 1);
                                    clickButton(opened, "确定");
                                });
                                QCOMPARE(editor.accounts(MemberServerColumn), QStringList(Shanghai));
                                QVERIFY(editor.table().isColumnVisible(MemberServerColumn));
                                m_client->pictures("bound-user-adds");
                                editor.typeName("本机构一组");
                                editor.save();
                            }),
                            box("提示", "添加账号组成功!", "确定")});
        const QString id = QString("SH01|%1").arg(database().groupId(Shanghai, "本机构一组"));
        QCOMPARE(database().group(Shanghai, "本机构一组"), Institution + "|1|bound");
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai, InstitutionId));

        m_client->pressGroupButton("本机构一组", "编辑",
                                   {editing([&](const GroupEditor& editor) {
                                        editor.typeName("本机构二组");
                                        editor.save();
                                    }),
                                    box("提示", "编辑账号组成功!", "确定")});
        m_client->pressGroupButton("本机构二组", "删除",
                                   {box("提示", "确定要删除该项?", "是"), box("提示", "删除账号组成功!", "确定")});
        QCOMPARE(m_client->shownRows(), own);
        QCOMPARE(database().newAudit(), QStringList({"SH01|bound|2|625|" + id + "|0|", "SH01|bound|0|625|" + id + "|0|",
                                                     "SH01|bound|3|625|" + id + "|0|"}));

        start("boundviewer");
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai, 2));
        verifyRowButtons({});
    }

    void withoutThePortalThereAreNoInstitutions()
    {
        m_client->switchModules("return { mdl_tradetype = { mdl_tradetype_future = true } }");
        start("admin");
        QVERIFY(m_client->table().isColumnRemoved(InstitutionColumn));
        m_client->pictures("without-portal");
        const QStringList before = database().groups(Shanghai);
        m_client->addGroup({adding([&](const GroupEditor& editor) {
            QVERIFY(!editor.institution().isVisible());
            editor.typeName("无机构组");
            editor.save();
            // The dialog stays: an institution is missing, and there is no place to give it.
            QCOMPARE(editor.institutionTip(), QString("所属机构不能为空!"));
            editor.close();
        })});
        QCOMPARE(database().groups(Shanghai), before);

        // A group that has one can be edited.
        const QString name = m_client->shown(NameColumn).at(1);
        const QString id = QString::number(database().groupId(Shanghai, name));
        const QString institution = database().group(Shanghai, name).section('|', 0, 0);
        m_client->pressGroupButton(name, "编辑",
                                   {editing([&](const GroupEditor& editor) {
                                        editor.typeName("改过的组");
                                        editor.save();
                                    }),
                                    box("提示", "编辑账号组成功!", "确定")});
        QCOMPARE(database().newAudit(), QStringList("SH01|admin|0|625|SH01|" + id + "|0|"));
        QCOMPARE(database().group(Shanghai, "改过的组"), institution + "|2|admin");
    }

    void tradeTypesThatAreSwitchedOffAreNotOffered()
    {
        m_client->switchModules("return { mdl_portal = { mdl_portal_pb = true },"
                                " mdl_tradetype = { mdl_tradetype_stock = true, mdl_tradetype_option = true } }");
        start("admin");
        QCOMPARE(offeredTypes(), QStringList({"证券账号", "股票期权账号"}));

        // The lists of the other trade types are neither shown nor touched.
        const QString name =
            database().value("SELECT name FROM account_group WHERE server_id = 1 AND group_id = 2").toString();
        const auto before = database().riskConfig(Shanghai, 2).rcRule;
        QVERIFY(before.lists.size() > 1);
        playRiskSettings(*m_client, name, [&](const RiskSettings& settings) {
            QCOMPARE(settings.tradeTypes(), QStringList({"证券账号", "股票期权账号"}));
            m_client->picture("two-trade-types");
            play([&] { settings.save(); }, {box("提示", "保存成功", "确定")});
            settings.close();
        });
        QTRY_COMPARE_WITH_TIMEOUT(database().newAuditRows(), 2, 60000);
        database().newAudit();
        const auto after = database().riskConfig(Shanghai, 2).rcRule;
        QCOMPARE(after.lists.size(), before.lists.size());
        for (std::size_t i = 0; i < before.lists.size(); ++i) {
            QCOMPARE(after.lists[i].traderType, before.lists[i].traderType);
            QCOMPARE(after.lists[i].entries.size(), before.lists[i].entries.size());
        }
    }

private:
    void start(const QString& user)
    {
        m_client->start(user, user + "123");
        m_client->chooseServer(Shanghai);
    }

    /// Every row has exactly these buttons.
    void verifyRowButtons(const QStringList& texts)
    {
        const WQ::CStandardHpfTable& table = m_client->table();
        const auto* const delegate =
            dynamic_cast<WQ::CBaseTableColumnMultiButtonsDelegate*>(table.columnDelegate(OperationColumn));
        const WQ::IBaseHpfTableModel& model = *table.dataModel();
        QVERIFY(model.rowCount() > 0);
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList shown;
            for (const WQ::ButtonData& button : delegate->itemButtons(model.getDataByRow(row)->getKey())) {
                shown << button.text;
            }
            QCOMPARE(shown, texts);
        }
    }

    int roomAfterSearch()
    {
        const QWidget& search = m_client->searchEdit();
        const QWidget& refresh = *findButton(m_client->panel(), "立即刷新");
        return refresh.mapTo(&m_client->panel(), QPoint()).x() - search.mapTo(&m_client->panel(), QPoint()).x() -
               search.width();
    }

    /// What the picker offers when somebody adds a group.
    QStringList offeredTypes()
    {
        QStringList types;
        m_client->addGroup({adding([&](const GroupEditor& editor) {
            editor.pick([&](QWidget& opened) {
                types = AccountPicker(opened).types();
                clickButton(opened, "取消");
            });
            editor.close();
        })});
        return types;
    }
};

TEST_WITH_WIDGETS(TourRightsTest)
#include "tst_tour_rights.moc"
