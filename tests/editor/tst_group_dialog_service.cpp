// SPDX-License-Identifier: Apache-2.0
#include "editor/AccountType.h"
#include "editor/EditorServiceFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"

#include <QAbstractItemView>
#include <QClipboard>

using namespace editor_test;
using nvservice::EZvDataOperation;

namespace
{

const QString Server = QStringLiteral("上海分系统");
const QString House = QStringLiteral("砚池证券股份有限公司");
constexpr int HouseId = 1;

/// Of an open account with its product, as the picker shows it. Belongs behind "SELECT".
const QString OfferedText =
    QStringLiteral(" a.account_id || CASE a.unit_id WHEN '' THEN '' ELSE '-' || a.unit_id END || '(' ||"
                   " coalesce((SELECT p.name FROM product_account pa JOIN product p ON p.server_id = pa.server_id"
                   "   AND p.product_id = pa.product_id WHERE pa.account_id = a.id AND p.excluded = 0), '未关联产品')"
                   " || ')' ");
const QString OpenAccounts =
    QStringLiteral(" FROM account a JOIN sub_system s ON s.id = a.server_id WHERE s.name = ? AND a.state_code <> 5"
                   " AND a.excluded = 0 ");

} // namespace

/// What the user puts into the dialogs, in the database of the real service.
class GroupDialogServiceTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_client = std::make_unique<EditorServiceFixture>();
        m_client->logInAs("admin", "admin123");
    }

    void cleanupTestCase() { m_client.reset(); }

    void init() { m_client->createDialog().setAccountProductMap(m_client->products()); }

    void cleanup()
    {
        m_client->dialog.reset();
        m_client->boxes.verify();
        m_client->log.verify();
    }

    void aNewGroupIsStoredAndAudited()
    {
        const auto group = putIn("对话框新组");
        QCOMPARE(m_client->column(1), typeAndTwoAccounts().mid(1));
        QCOMPARE(m_client->column(2), QStringList({Server, Server}));
        QCOMPARE(m_client->send(EZvDataOperation::Add, group, Server), QString());
        QCOMPARE(groupRow("对话框新组"), QStringList("对话框新组|1|1|admin"));
        QCOMPARE(m_client->members(Server, "对话框新组"), typeAndTwoAccounts().mid(1));
        QCOMPARE(m_client->lastAudit(), QString("admin|2|0|0|1"));
        // A second one with this name is refused, and that is audited too.
        QVERIFY(m_client->send(EZvDataOperation::Add, group, Server).contains("对话框新组"));
        QVERIFY(m_client->lastAudit().startsWith("admin|2|"));
        QVERIFY(m_client->lastAudit() != QString("admin|2|0|0|1"));
        QCOMPARE(groupRow("对话框新组").size(), 1);
    }

    void anEditedGroupIsItsNextRevision()
    {
        QCOMPARE(m_client->send(EZvDataOperation::Add, putIn("编辑前"), Server), QString());
        const auto group = m_client->storedGroup(Server, "编辑前");
        QVERIFY(group);
        const int ended = m_client->edit(group, Server, [&](WQ::CBaseDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QString("编辑账号组"));
            m_client->waitUntilLoaded();
            QCOMPARE(m_client->institutionEdit()->text(), House);
            QCOMPARE(m_client->systemCombo()->currentText(), Server);
            m_client->nameEdit()->setFocus();
            m_client->nameEdit()->selectAll();
            support::typeText(*m_client->nameEdit(), " 编辑后 ");
            QWidget* const button = m_client->table()->itemWidget(m_client->table()->rowID(0), 4);
            QTRY_VERIFY(button->isVisible());
            m_client->boxes.expectQuestion(QMessageBox::Information, "删除", "确认删除? ", QMessageBox::Yes);
            QTest::mouseClick(button, Qt::LeftButton);
            m_client->click("保存");
        });
        QCOMPARE(ended, 1);
        QString ignored;
        m_client->dialog->getGroupInfo(group, ignored);
        QCOMPARE(m_client->send(EZvDataOperation::Modify, group, Server), QString());
        QCOMPARE(groupRow("编辑前"), QStringList());
        QCOMPARE(groupRow("编辑后"), QStringList("编辑后|1|2|admin"));
        QCOMPARE(m_client->members(Server, "编辑后"), typeAndTwoAccounts().mid(2));
        QCOMPARE(m_client->lastAudit(), QString("admin|0|0|1|1"));
        const QStringList history = m_client->rows(
            "SELECT h.revision, h.name FROM account_group_history h JOIN sub_system s ON s.id = h.server_id"
            " WHERE s.name = ? AND h.group_id = ? ORDER BY h.revision",
            {Server, QString::number(group->groupId)});
        QCOMPARE(history, QStringList({"1|编辑前", "2|编辑后"}));
    }

    void aGroupThatChangedMeanwhileIsRefusedAndTheInputStays()
    {
        QCOMPARE(m_client->send(EZvDataOperation::Add, putIn("两人的组"), Server), QString());
        const auto mine = m_client->storedGroup(Server, "两人的组");
        const auto others = m_client->storedGroup(Server, "两人的组");
        others->groupName = "别人的组";
        m_client->editLoaded(mine, Server, [&](WQ::CBaseDialog&) {
            m_client->nameEdit()->selectAll();
            support::typeText(*m_client->nameEdit(), "我的组");
            QCOMPARE(m_client->send(EZvDataOperation::Modify, others, Server), QString());
            m_client->click("保存");
        });
        QString ignored;
        m_client->dialog->getGroupInfo(mine, ignored);
        const QString refusal = m_client->send(EZvDataOperation::Modify, mine, Server);
        QVERIFY2(refusal.contains("admin"), qPrintable(refusal));
        QCOMPARE(groupRow("别人的组"), QStringList("别人的组|1|2|admin"));
        QCOMPARE(groupRow("我的组"), QStringList());
        QVERIFY(m_client->lastAudit().startsWith("admin|0|") && m_client->lastAudit() != QString("admin|0|0|1|1"));
        m_client->again([&](WQ::CBaseDialog&) {
            m_client->waitUntilLoaded();
            QCOMPARE(m_client->nameEdit()->text(), QString("我的组"));
            QCOMPARE(m_client->column(1), typeAndTwoAccounts().mid(1));
            m_client->click("关闭");
        });
    }

    void aDeletedGroupIsGoneAndAudited()
    {
        QCOMPARE(m_client->send(EZvDataOperation::Add, putIn("要删的组"), Server), QString());
        QCOMPARE(m_client->send(EZvDataOperation::Delete, m_client->storedGroup(Server, "要删的组"), Server),
                 QString());
        QCOMPARE(groupRow("要删的组"), QStringList());
        QCOMPARE(m_client->members(Server, "要删的组"), QStringList());
        QVERIFY(m_client->lastAudit().startsWith("admin|3|0|1|"));
    }

    void strangeNamesAreStoredWholeOrRefused_data()
    {
        const support::DataRows<QString, bool> row("name", "stored");
        row("ten thousand characters", QString(10000, QChar(u'组')), false);
        row("control characters", "a\x01\x1b[31mb", false);
        row("a change of direction", "组\u202eexe", false);
        row("emoji", "组😀", true);
        row("right to left", "\u0645\u062c\u0645\u0648\u0639\u0629", true);
        row("quotes and signs of SQL", "'; DROP TABLE account_group; --\"%_\\", true);
    }
    void strangeNamesAreStoredWholeOrRefused()
    {
        QFETCH(QString, name);
        QFETCH(bool, stored);
        const auto group = putIn(name);
        QCOMPARE(QString::fromStdString(group->groupName), name);
        const QString refusal = m_client->send(EZvDataOperation::Add, group, Server);
        QVERIFY2(refusal.isEmpty() == stored, qPrintable(refusal.left(200)));
        QCOMPARE(groupRow(name), stored ? QStringList(name + "|1|1|admin") : QStringList());
        if (!stored) {
            QVERIFY2(refusal.startsWith("账号组") && refusal.size() < 100, qPrintable(refusal.left(200)));
        }
        QCOMPARE(m_client->lastAudit().section('|', 2, 2) == "0", stored);
    }

    void openAccountsAreOfferedWithTheirProducts_data()
    {
        const support::DataRows<QString> row("server");
        for (const QString& server : m_client->rows("SELECT name FROM sub_system ORDER BY name", {})) {
            row(server, server);
        }
    }
    void openAccountsAreOfferedWithTheirProducts()
    {
        QFETCH(QString, server);
        QStringList expected;
        for (const QString& type : m_client->rows("SELECT DISTINCT a.broker_type" + OpenAccounts +
                                                      "AND a.broker_type NOT IN (0, 12, 13) ORDER BY a.broker_type",
                                                  {server})) {
            QStringList texts =
                m_client->rows("SELECT" + OfferedText + OpenAccounts + "AND a.broker_type = ?", {server, type});
            texts.sort();
            expected << QAV::accountTypeName(type.toInt()) << texts;
        }
        QVERIFY(expected.size() > 50);
        QVERIFY(expected.filter("未关联产品").size() > 2);
        QVERIFY(expected.filter("-01(").size() > 2);

        m_client->lookAtNew(server, [&] {
            QStringList offered;
            m_client->boxes.expectDialog([&](WQ::CBaseDialog& picker) {
                auto* const types = picker.findChild<WQ::CComboBox*>();
                auto* const box = picker.findChild<QAV::CUserCombobox*>();
                for (int type = 0; type < types->count(); ++type) {
                    types->setCurrentIndex(type);
                    box->showPopup();
                    const auto* const items = box->findChild<QAbstractItemView*>("items")->model();
                    QStringList texts;
                    for (int row = 0; row < items->rowCount(); ++row) {
                        texts << items->index(row, 0).data().toString();
                    }
                    box->hidePopup();
                    texts.sort();
                    offered << types->currentText() << texts;
                }
                clickButton(picker, "取消");
            });
            m_client->click("添加账号");
            QCOMPARE(offered, expected);
        });
    }

    void aServerThatIsDownIsNamedAndTheOthersWork()
    {
        const auto down = boost::make_shared<support::CFakeTransport>();
        down->onQuery = [](const nvservice::CKolmQueryDataReq&, const QAV::ITransport::ReplyHandler& handler) {
            handler(support::replyWithError(utils::EErrorCode::NotConnected, "无法连接"));
        };
        QVERIFY(support::centre().addServer("西安分系统", "XA01", down).isSuccess());
        m_client->createDialog();
        m_client->boxes.expectDialog([&](WQ::CBaseDialog&) {
            m_client->boxes.expectMessage(QMessageBox::Information, "提示", "分系统“西安分系统”：无法连接");
            m_client->waitUntilLoaded();
            QTRY_VERIFY(m_client->boxes.failures().isEmpty());
            support::typeText(*m_client->nameEdit(), "少一个分系统");
            m_client->chooseInstitution(House);
            m_client->expectPicker([&](QAV::CSelectAccountDialog& picker) {
                picker.findChild<WQ::CComboBox*>()->setCurrentText(
                    QAV::accountTypeName(typeAndTwoAccounts()[0].toInt()));
                checkAccounts(picker, {typeAndTwoAccounts()[1] + "("});
            });
            m_client->click("添加账号");
            m_client->click("保存");
        });
        m_client->dialog->setServerName(Server);
        QCOMPARE(m_client->dialog->execDialog(true), 1);
        QCOMPARE(m_client->send(EZvDataOperation::Add, m_client->result(Server), Server), QString());
        QCOMPARE(groupRow("少一个分系统"), QStringList("少一个分系统|1|1|admin"));
        support::centre().removeServer("西安分系统");
    }

    void aBoundUserStoresAGroupOfHisInstitution()
    {
        m_client->logInAs("bound", "bound123");
        m_client->createDialog();
        m_client->addLoaded(Server, [&](WQ::CBaseDialog&) {
            QVERIFY(!m_client->systemCombo());
            QCOMPARE(m_client->institutionEdit()->text(), House);
            QVERIFY(!m_client->institutionEdit()->isEnabled());
            support::typeText(*m_client->nameEdit(), "本机构的组");
            m_client->expectPicker([&](QAV::CSelectAccountDialog& picker) {
                picker.findChild<WQ::CComboBox*>()->setCurrentText(
                    QAV::accountTypeName(typeAndTwoAccounts()[0].toInt()));
                checkAccounts(picker, {typeAndTwoAccounts()[1] + "("});
            });
            m_client->click("添加账号");
            QCOMPARE(m_client->column(1), typeAndTwoAccounts().mid(1, 1));
            m_client->click("保存");
        });
        const auto group = m_client->result(Server);
        QCOMPARE(group->institutionId, HouseId);
        QCOMPARE(m_client->send(EZvDataOperation::Add, group, Server), QString());
        QCOMPARE(groupRow("本机构的组"), QStringList("本机构的组|1|1|bound"));
        QCOMPARE(m_client->lastAudit(), QString("bound|2|0|0|1"));
        m_client->logInAs("admin", "admin123");
    }

    void aUserIsOfferedTheAccountTypesOfHisRights()
    {
        m_client->logInAs("futures", "futures123");
        m_client->createDialog();
        m_client->lookAtNew(Server, [&] {
            QStringList types;
            m_client->boxes.expectDialog([&](WQ::CBaseDialog& picker) {
                const auto* const box = picker.findChild<WQ::CComboBox*>();
                for (int i = 0; i < box->count(); ++i) {
                    types << box->itemText(i);
                }
                clickButton(picker, "取消");
            });
            m_client->click("添加账号");
            QCOMPARE(types, QStringList({"期货账号", "期货期权账号"}));
        });
        m_client->logInAs("admin", "admin123");
    }

    void aUserWhoMayNotSeeEveryAccountKeepsThemAll()
    {
        const auto group = boost::make_shared<nvservice::CAccountGroup>();
        group->groupName = "混合组";
        group->institutionId = HouseId;
        QStringList ids;
        for (const auto type : {nvservice::EZVBrokerType::Future, nvservice::EZVBrokerType::Stock}) {
            ids += m_client->rows("SELECT a.account_id" + OpenAccounts +
                                      "AND a.institution_id = 1 AND a.unit_id = '' AND a.broker_type = ? LIMIT 1",
                                  {Server, QString::number(static_cast<int>(type))});
            group->accounts.push_back(boost::make_shared<nvservice::CAccountInfo>());
            group->accounts.back()->brokerType = type;
            group->accounts.back()->accountId = ids.last().toStdString();
        }
        QCOMPARE(m_client->send(EZvDataOperation::Add, group, Server), QString());

        m_client->logInAs("futures", "futures123");
        m_client->createDialog();
        const auto mine = m_client->storedGroup(Server, "混合组");
        QVERIFY(mine);
        QCOMPARE(mine->accounts.size(), std::size_t(2));
        m_client->editLoaded(mine, Server, [&](WQ::CBaseDialog&) {
            QCOMPARE(m_client->column(0), QStringList({"期货账号", "证券账号"}));
            QCOMPARE(m_client->column(1).at(0), ids.at(0));
            QVERIFY2(m_client->column(1).at(1).startsWith("无权查看#"), qPrintable(m_client->column(1).at(1)));
            m_client->nameEdit()->selectAll();
            support::typeText(*m_client->nameEdit(), "混合二组");
            m_client->click("保存");
        });
        QString ignored;
        m_client->dialog->getGroupInfo(mine, ignored);
        QCOMPARE(m_client->send(EZvDataOperation::Modify, mine, Server), QString());
        QCOMPARE(m_client->members(Server, "混合二组"), ids);
        m_client->logInAs("admin", "admin123");
    }

private:
    /// Two open main accounts of the house and of one type; the type comes first.
    QStringList typeAndTwoAccounts() const
    {
        const QStringList type =
            m_client->rows("SELECT a.broker_type" + OpenAccounts +
                               "AND a.institution_id = 1 AND a.unit_id = '' AND a.broker_type NOT IN (12, 13)"
                               " GROUP BY a.broker_type HAVING count(*) >= 2 ORDER BY a.broker_type",
                           {Server});
        return type.isEmpty() ? type
                              : type.mid(0, 1) + m_client->rows("SELECT a.account_id" + OpenAccounts +
                                                                    "AND a.institution_id = 1 AND a.unit_id = ''"
                                                                    " AND a.broker_type = ? ORDER BY a.id LIMIT 2",
                                                                {Server, type.first()});
    }

    /// Puts a group of the house through the dialogs, with the two accounts, and saves.
    boost::shared_ptr<nvservice::CAccountGroup> putIn(const QString& name)
    {
        const QStringList wanted = typeAndTwoAccounts();
        if (wanted.size() != 3) {
            qFatal("the sample data hold no two accounts of one type");
        }
        const int ended = m_client->addLoaded(Server, [&](WQ::CBaseDialog&) {
            QApplication::clipboard()->setText(name);
            m_client->nameEdit()->setFocus();
            QTest::keyClick(m_client->nameEdit(), Qt::Key_V, Qt::ControlModifier);
            m_client->chooseInstitution(House);
            m_client->expectPicker([&](QAV::CSelectAccountDialog& picker) {
                picker.findChild<WQ::CComboBox*>()->setCurrentText(QAV::accountTypeName(wanted[0].toInt()));
                checkAccounts(picker, {wanted[1] + "(", wanted[2] + "("});
            });
            m_client->click("添加账号");
            m_client->click("保存");
        });
        const auto group = boost::make_shared<nvservice::CAccountGroup>();
        QString serverName = Server;
        m_client->dialog->getGroupInfo(group, serverName);
        if (ended != 1 || serverName != Server) {
            qFatal("the dialog did not end with a group of the server");
        }
        return group;
    }

    /// "name|institution|revision|modified by", empty if there is no such group.
    QStringList groupRow(const QString& name) const
    {
        return m_client->rows("SELECT g.name, g.institution_id, g.revision, g.modified_by FROM account_group g"
                              " JOIN sub_system s ON s.id = g.server_id WHERE s.name = ? AND g.name = ?",
                              {Server, name});
    }

    std::unique_ptr<EditorServiceFixture> m_client;
};

TEST_WITH_WIDGETS(GroupDialogServiceTest)
#include "tst_group_dialog_service.moc"
