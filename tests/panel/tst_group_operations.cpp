// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include "editor/CAddAccountGroupDialog.h"
#include "support/TestProgram.h"

#include <QAV/CManagerSearchLineEdit.h>
#include <WQ/CMessageBox.h>
#include <nvservice/CInstitutionInfo.h>

#include <QAbstractItemView>

using namespace panel_test;
using nvservice::EZvDataOperation;

namespace
{

constexpr int SaveButton = 2;
constexpr int CloseButton = 3;
constexpr int InstitutionId = 7;

/// Presses a button of the open group dialog by the event that it reports.
void press(WQ::CBaseDialog& dialog, int button)
{
    dialog.handleEvent(5, button, 0, QString(), nullptr);
}

/// Waits until the dialog has its accounts and institutions.
void waitForData(WQ::CBaseDialog& dialog)
{
    auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
    QTRY_VERIFY(mask->isHidden());
}

boost::shared_ptr<nvservice::CAccountGroup> makeOwnedGroup(int id, const std::string& name, int accounts = 1)
{
    const auto group = makeGroup(id, name, ShanghaiTag, accounts);
    group->institutionId = InstitutionId;
    return group;
}

QLineEdit* nameEdit(WQ::CBaseDialog& dialog)
{
    return dialog.findChild<WQ::CLineEdit*>();
}

/// Notes whom message boxes belong to, and closes them without an answer.
class NotingPresenter : public WQ::IMessagePresenter
{
public:
    NotingPresenter() : m_before(WQ::CMessageBox::setPresenter(this)) {}
    ~NotingPresenter() override { WQ::CMessageBox::setPresenter(m_before); }

    QMessageBox::StandardButton showMessage(const WQ::MessageRequest& request) override
    {
        parents << request.parent;
        return QMessageBox::NoButton;
    }

    QList<QWidget*> parents;

private:
    WQ::IMessagePresenter* const m_before;
};

} // namespace

/// The flows that add, edit and delete a group, from the button to the request and the message.
class GroupOperationsTest : public PanelTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PanelTest::init();
        m_sent = false;
        m_client->addShanghai();
    }

    void savingAnEditedGroupWithItsNamePassesTheDuplicateTest()
    {
        show({makeGroup(1, "一组", ShanghaiTag), makeGroup(2, "二组", ShanghaiTag)});
        QVERIFY(m_client->panel->checkGroupInfo(makeGroup(1, "一组", ShanghaiTag)));
    }

    void twoGroupsOfOneNameOnDifferentServersAreAllowed()
    {
        m_client->addShenzhen();
        show({makeGroup(1, "一组", ShanghaiTag)});
        QVERIFY(m_client->panel->checkGroupInfo(makeGroup(-1, "一组", ShenzhenTag)));
    }

    void namesThatDifferInCaseOrABlankAreDifferent_data()
    {
        const support::DataRows<QString> row("name");
        row("letter case", "alpha");
        row("trailing blank", "Alpha ");
        row("leading blank", " Alpha");
    }
    void namesThatDifferInCaseOrABlankAreDifferent()
    {
        QFETCH(QString, name);
        show({makeGroup(1, "Alpha", ShanghaiTag)});
        QVERIFY(m_client->panel->checkGroupInfo(makeGroup(-1, name.toStdString(), ShanghaiTag)));
    }

    void aNameThatAnotherGroupOfTheServerHasIsRefused()
    {
        show({makeGroup(1, "一组", ShanghaiTag), makeGroup(2, "二组", ShanghaiTag)});
        m_boxes->expectMessage(QMessageBox::Critical, "保存账号组", "保存账号组失败: 已存在相同的账号组名称!");
        QVERIFY(!m_client->panel->checkGroupInfo(makeGroup(-1, "二组", ShanghaiTag)));
    }

    void aGroupWithoutAccountsIsRefused()
    {
        show({makeGroup(1, "一组", ShanghaiTag)});
        m_boxes->expectMessage(QMessageBox::Critical, "保存账号组", "保存账号组失败: 请选择账号!");
        // The empty list is found before the name that is taken.
        QVERIFY(!m_client->panel->checkGroupInfo(makeGroup(-1, "一组", ShanghaiTag, 0)));
    }

    void closingTheEditorAfterAFailedValidationSendsNothing()
    {
        m_client->shanghai->onOperate = [&](const auto&, const auto&) { m_sent = true; };
        show({makeOwnedGroup(1, "一组"), makeOwnedGroup(2, "二组")});
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            waitForData(dialog);
            nameEdit(dialog)->setText("二组");
            press(dialog, SaveButton);
        });
        m_boxes->expectMessage(QMessageBox::Critical, "保存账号组", "保存账号组失败: 已存在相同的账号组名称!");
        QString kept;
        m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
            kept = nameEdit(dialog)->text();
            press(dialog, CloseButton);
        });
        QVERIFY(m_client->panel->handleEvent(218, 4, 1, "上海分系统|1", nullptr));
        QCOMPARE(kept, QString("二组"));
        QVERIFY(!somethingWasSent());
    }

    void closingTheEditorLeavesTheListedGroupUntouched()
    {
        show({makeOwnedGroup(1, "一组")});
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            waitForData(dialog);
            nameEdit(dialog)->setText("改名");
            press(dialog, CloseButton);
        });
        QVERIFY(m_client->panel->handleEvent(218, 4, 1, "上海分系统|1", nullptr));
        // The name in the list is still taken, for another group.
        m_boxes->expectMessage(QMessageBox::Critical, "保存账号组", "保存账号组失败: 已存在相同的账号组名称!");
        QVERIFY(!m_client->panel->checkGroupInfo(makeOwnedGroup(2, "一组")));
        QVERIFY(m_client->panel->checkGroupInfo(makeOwnedGroup(2, "改名")));
    }

    void aRefusedEditLeavesTheListedGroupUntouched()
    {
        show({makeOwnedGroup(1, "一组"), makeOwnedGroup(2, "二组")});
        const auto expectRefusal = [this] {
            m_boxes->expectMessage(QMessageBox::Critical, "保存账号组", "保存账号组失败: 已存在相同的账号组名称!");
        };
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            waitForData(dialog);
            nameEdit(dialog)->setText("二组");
            press(dialog, SaveButton);
        });
        expectRefusal();
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) { press(dialog, CloseButton); });
        QVERIFY(m_client->panel->handleEvent(218, 4, 1, "上海分系统|1", nullptr));
        // The list still holds the name.
        expectRefusal();
        QVERIFY(!m_client->panel->checkGroupInfo(makeOwnedGroup(3, "一组")));
    }

    void anEditSendsTheWorkingCopyToItsServer()
    {
        const auto listed = makeOwnedGroup(1, "一组", 2);
        listed->setRevision(7);
        show({listed});
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            waitForData(dialog);
            nameEdit(dialog)->setText("  改名 ");
            press(dialog, SaveButton);
        });
        QVERIFY(m_client->panel->handleEvent(218, 4, 1, "上海分系统|1", nullptr));
        const auto operation = m_client->shanghai->takeOperation();
        QCOMPARE(operation.request.operation, EZvDataOperation::Modify);
        const auto sent = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(operation.request.data);
        QCOMPARE(sent->groupName, std::string("改名"));
        QCOMPARE(sent->groupId, 1);
        QCOMPARE(sent->revision(), std::int64_t(7));
        QCOMPARE(sent->accounts.size(), std::size_t(2));
    }

    void addingOpensAFreshFormAndKeepsTheInputAfterARefusal_data()
    {
        const support::DataRows<int> row("type");
        row("a click", 5);
        row("the event of buttons and Enter", 99);
    }
    void addingOpensAFreshFormAndKeepsTheInputAfterARefusal()
    {
        QFETCH(int, type);
        m_client->shanghai->onOperate = [&](const auto&, const auto&) { m_sent = true; };
        show({makeOwnedGroup(1, "一组")});
        QStringList titles;
        QStringList names;
        const auto note = [&](WQ::CBaseDialog& dialog) {
            waitForData(dialog);
            titles << dialog.windowTitle();
            names << nameEdit(dialog)->text();
        };
        m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
            note(dialog);
            nameEdit(dialog)->setText("新组");
            dialog.findChild<QAV::CManagerSearchLineEdit*>()->setCurrentManagerId(InstitutionId);
            press(dialog, SaveButton);
        });
        m_boxes->expectMessage(QMessageBox::Critical, "保存账号组", "保存账号组失败: 请选择账号!");
        const auto close = [&](WQ::CBaseDialog& dialog) {
            note(dialog);
            press(dialog, CloseButton);
        };
        m_boxes->expectDialog(close);
        QVERIFY(m_client->panel->handleEvent(type, 1, 0, QString(), nullptr));
        m_boxes->expectDialog(close);
        QVERIFY(m_client->panel->handleEvent(type, 1, 0, QString(), nullptr));
        QCOMPARE(titles, QStringList({"添加账号组", "添加账号组", "添加账号组"}));
        QCOMPARE(names, QStringList({"", "新组", ""}));
        QVERIFY(!somethingWasSent());
    }

    void anAddedGroupIsSelectedAndVisible()
    {
        std::vector<nvservice::IDataPtr> groups;
        for (int id = 1; id <= 100; ++id) {
            groups.push_back(makeOwnedGroup(id, "组" + std::to_string(id)));
        }
        show(groups);
        m_client->table()->setCurrentKey("上海分系统|2");
        m_client->panel->operatorAccountGroupInfo(EZvDataOperation::Add, makeOwnedGroup(0, "新组"), Shanghai);
        m_boxes->expectMessage(QMessageBox::Information, "提示", "添加账号组成功!");
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_groups.insert(m_groups.begin() + 80, makeOwnedGroup(777, "新组"));
        }
        m_client->shanghai->takeOperation().handler({});
        QTRY_COMPARE(m_client->table()->selectedKeys(), QStringList("上海分系统|777"));
        const QAbstractItemView& view = *m_client->table()->view();
        QVERIFY(view.viewport()->rect().contains(view.visualRect(view.currentIndex())));
        m_client->table()->setCurrentKey("上海分系统|2");
        QTRY_VERIFY(m_client->mask()->isHidden());
        m_client->panel->onActive();
        QTRY_COMPARE(m_client->table()->selectedKeys(), QStringList("上海分系统|2"));
    }

    void answeringNoToTheDeletionSendsNothing()
    {
        m_client->shanghai->onOperate = [&](const auto&, const auto&) { m_sent = true; };
        show({makeGroup(1, "一组", ShanghaiTag)});
        m_boxes->expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::No);
        QVERIFY(m_client->panel->handleEvent(218, 4, 2, "上海分系统|1", nullptr));
        QVERIFY(!somethingWasSent());
    }

    void aDeletionSendsTheListedRecord()
    {
        const auto listed = makeGroup(1, "一组", ShanghaiTag);
        listed->setRevision(5);
        show({listed});
        m_boxes->expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::Yes);
        QVERIFY(m_client->panel->handleEvent(218, 4, 2, "上海分系统|1", nullptr));
        const auto operation = m_client->shanghai->takeOperation();
        QCOMPARE(operation.request.operation, EZvDataOperation::Delete);
        QCOMPARE(operation.request.data->getKey(), listed->getKey());
        QCOMPARE(operation.request.data->revision(), std::int64_t(5));
    }

    void aFailedDeletionShowsTheServersTextAndKeepsTheRow()
    {
        show({makeGroup(1, "一组", ShanghaiTag)});
        m_boxes->expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::Yes);
        QVERIFY(m_client->panel->handleEvent(218, 4, 2, "上海分系统|1", nullptr));
        m_boxes->expectMessage(QMessageBox::Information, "提示", "删除账号组失败!(没有权限)");
        m_client->shanghai->takeOperation().handler(
            support::replyWithError(utils::EErrorCode::PermissionDenied, "没有权限"));
        QTRY_VERIFY(m_boxes->failures().isEmpty());
        QCOMPARE(m_client->shown(0), QStringList({"一组"}));
    }

    void afterASuccessTheSearchIsNotAppliedToTheRebuiltTable()
    {
        show({makeGroup(1, "甲组", ShanghaiTag), makeGroup(2, "乙组", ShanghaiTag)});
        m_client->typeInSearchEdit("甲");
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
        QCOMPARE(m_client->shown(0), QStringList({"甲组"}));
        m_boxes->expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::Yes);
        m_boxes->expectMessage(QMessageBox::Information, "提示", "删除账号组成功!");
        QVERIFY(m_client->panel->handleEvent(218, 4, 2, "上海分系统|1", nullptr));
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_groups = {makeGroup(2, "乙组", ShanghaiTag), makeGroup(3, "丙组", ShanghaiTag)};
        }
        m_client->shanghai->takeOperation().handler({});
        QTRY_COMPARE(m_client->shown(0), QStringList({"乙组", "丙组"}));
        QCOMPARE(m_client->searchEdit()->getText(), QString("甲"));
    }

    void theBoxesBelongToThePanel()
    {
        show({makeGroup(1, "一组", ShanghaiTag)});
        auto& panel = *m_client->panel;
        NotingPresenter presenter;
        panel.removeData(makeGroup(1, "一组", ShanghaiTag));
        QVERIFY(!panel.checkGroupInfo(makeGroup(-1, "新组", ShanghaiTag, 0)));
        QVERIFY(!panel.checkGroupInfo(makeGroup(-1, "一组", ShanghaiTag)));
        emit panel.sigOperatorAccountGroupInfo(3, false, "没有权限");
        QCOMPARE(presenter.parents, QList<QWidget*>({&panel, &panel, &panel, &panel}));
    }

    void aRowWhoseGroupIsGoneDoesNothing()
    {
        auto& panel = m_client->createPanel();
        m_client->shanghai->onOperate = [&](const auto&, const auto&) { m_sent = true; };
        // In the table, but not in the list that the last query kept.
        panel.addAccountGroupInTable(makeGroup(1, "一组", ShanghaiTag));
        for (int button = 0; button < 4; ++button) {
            QVERIFY(panel.handleEvent(218, 4, button, "上海分系统|1", nullptr));
        }
        QVERIFY(!somethingWasSent());
    }

    void aRowButtonOfAnotherIdDoesNothing()
    {
        m_client->shanghai->onOperate = [&](const auto&, const auto&) { m_sent = true; };
        show({makeGroup(1, "一组", ShanghaiTag)});
        for (const int button : {-1, 3, 218}) {
            QVERIFY(m_client->panel->handleEvent(218, 4, button, "上海分系统|1", nullptr));
        }
        QVERIFY(!somethingWasSent());
    }

private:
    /// A panel on a server that has these groups and one institution.
    void show(std::vector<nvservice::IDataPtr> groups)
    {
        m_groups = std::move(groups);
        m_client->shanghai->onQuery = [this](const nvservice::CKolmQueryDataReq& request, const auto& handler) {
            handler(support::replyWith(answerTo(request.dataType)));
        };
        if (m_client->shenzhen) {
            m_client->shenzhen->onQuery = [](const auto&, const auto& handler) { handler(support::replyWith({})); };
        }
        m_client->openPanel();
        QTRY_VERIFY(m_client->mask()->isHidden());
        QCOMPARE(m_client->model()->getDataCount(), int(m_groups.size()));
    }

    std::vector<nvservice::IDataPtr> answerTo(int dataType)
    {
        std::vector<nvservice::IDataPtr> records;
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (dataType == nvservice::DataType::AccountGroup) {
            for (const nvservice::IDataPtr& group : m_groups) {
                records.push_back(group->copy());
            }
        } else if (dataType == nvservice::DataType::Institution) {
            const auto institution = boost::make_shared<nvservice::CInstitutionInfo>();
            institution->institutionId = InstitutionId;
            institution->name = "远山基金";
            records.push_back(institution);
        }
        return records;
    }

    bool somethingWasSent() const { return m_sent; }

    std::mutex m_mutex; ///< guards the groups: the server answers on the service thread
    std::vector<nvservice::IDataPtr> m_groups;
    std::atomic<bool> m_sent{false};
};

TEST_WITH_WIDGETS(GroupOperationsTest)
#include "tst_group_operations.moc"
