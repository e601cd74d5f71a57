// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/Widgets.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CStandardTabControl.h>
#include <nvservice/CFinding.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>

#include <QAbstractButton>
#include <QAbstractItemModelTester>

#include <boost/make_shared.hpp>

using namespace history_test;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

/// The findings of the consistency check.
class HistoryFindingsTest : public HistoryTest
{
    Q_OBJECT

private slots:
    void theDataAreCheckedWhenTheUserLooks()
    {
        open();
        QCOMPARE(m_fixture->waiting(DataType::Finding), 0);
        showPage();
        m_fixture->answer(DataType::Finding,
                          {makeFinding(7, "账号已销户"), makeFinding(8, "重名"), makeFinding(9, "重名")});
        // By kind, in the order of pinyin.
        QTRY_COMPARE(HistoryFixture::shown(table(), 0), QStringList({"重名", "重名", "账号已销户"}));
        QCOMPARE(HistoryFixture::shown(table(), 1), QStringList({"组8", "组9", "组7"}));
        QCOMPARE(HistoryFixture::shown(table(), 4), QStringList({"处理：重名", "处理：重名", "处理：账号已销户"}));
        QVERIFY(m_fixture->isRead("共3项：账号已销户1项、重名2项"));
        tabs().setCurrentIndex(0);
        showPage();
        QCOMPARE(m_fixture->waiting(DataType::Finding), 0);
        m_fixture->click("重新检查");
        QCOMPARE(m_fixture->waiting(DataType::Finding), 1);
    }

    void aClickLeadsToTheHistoryOfTheGroup_data()
    {
        const support::DataRows<bool> row("isKey");
        row("the button", false);
        row("Enter", true);
    }
    void aClickLeadsToTheHistoryOfTheGroup()
    {
        QFETCH(bool, isKey);
        open();
        showPage();
        m_fixture->answer(DataType::Finding, {makeFinding(70, "账号已销户")});
        QTRY_COMPARE(table().dataModel()->rowCount(), 1);
        const QString key = table().dataModel()->getDataByRow(0)->getKey();
        if (isKey) {
            table().setCurrentKey(key);
            QTest::keyClick(table().view(), Qt::Key_Return);
        } else {
            dynamic_cast<WQ::CBaseTableColumnMultiButtonsDelegate&>(*table().columnDelegate(2)).press(key, 0);
        }
        QCOMPARE(tabs().currentIndex(), 0);
        const auto query = m_fixture->take(DataType::Audit);
        QCOMPARE(HistoryFixture::conditionsOf(query).number(QueryCondition::Group), std::optional<std::int64_t>(70));
        QVERIFY(HistoryFixture::shown(m_fixture->table("账号组列表"), 0).contains("组70"));
    }

    void theButtonIsSeenAtTheLeastWidthOfTheClient()
    {
        open();
        m_fixture->panel->resize(1280, 700);
        showPage();
        const auto finding = boost::dynamic_pointer_cast<nvservice::CFinding>(makeFinding(7, "账号已销户"));
        finding->text = std::string(300, 'x');
        finding->advice = std::string(300, 'y');
        m_fixture->answer(DataType::Finding, {finding});
        QTRY_COMPARE(table().dataModel()->rowCount(), 1);
        QCoreApplication::processEvents();
        const QRect cell = table().view()->visualRect(table().dataModel()->index(0, 2));
        QVERIFY2(cell.width() > 60 && cell.right() < table().view()->viewport()->width(),
                 qPrintable(QString::number(cell.right())));
        // However long the finding is, the beginning of what to do about it is seen, too.
        const QRect advice = table().view()->visualRect(table().dataModel()->index(0, 4));
        QVERIFY2(advice.left() + 300 < table().view()->viewport()->width(), qPrintable(QString::number(advice.left())));
    }

    void whatIsSeenIsExported()
    {
        open();
        showPage();
        m_fixture->answer(DataType::Finding, {makeFinding(7, "账号已销户"), makeFinding(8, "重名")});
        QTRY_COMPARE(table().dataModel()->rowCount(), 2);
        table().filterColumn(0, {WQ::FilterOneOf, {"重名"}});
        QCOMPARE(HistoryFixture::exported(table()),
                 QStringList({"问题类型,账号组,内容,处理建议", "重名,组8,内容8,处理：重名"}));
    }

    void aFindingWithoutAGroupLeadsNowhere()
    {
        open();
        showPage();
        m_fixture->answer(DataType::Finding, {makeFinding(0, "数据库")});
        QTRY_COMPARE(table().dataModel()->rowCount(), 1);
        auto& buttons = dynamic_cast<WQ::CBaseTableColumnMultiButtonsDelegate&>(*table().columnDelegate(2));
        QVERIFY(buttons.itemButtons(table().dataModel()->getDataByRow(0)->getKey()).isEmpty());
    }

    void theModelKeepsTheRulesOfItsViews()
    {
        open();
        const QAbstractItemModelTester tester(table().dataModel(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        showPage();
        const auto query = m_fixture->take(DataType::Finding);
        QCOMPARE(query.request.queryKey, std::string()); // there are no conditions
        m_fixture->answer(query, {makeFinding(7, "账号已销户"), makeFinding(8, "重名")});
        QTRY_COMPARE(table().dataModel()->rowCount(), 2);
        m_fixture->click("重新检查");
        QCOMPARE(table().dataModel()->rowCount(), 0);
    }

    void noFindingsAFailureAndAMissingRightAreSaid()
    {
        open();
        showPage();
        m_fixture->fail(m_fixture->take(DataType::Finding), "服务端忙");
        QTRY_COMPARE(m_fixture->emptyText(table()), QString("检查失败：服务端忙"));
        m_fixture->click("重新检查");
        m_fixture->answer(DataType::Finding, {});
        QTRY_COMPARE(m_fixture->emptyText(table()), QString("没有发现问题"));

        m_fixture->open(NoAudit);
        showPage();
        QCOMPARE(m_fixture->waiting(DataType::Finding), 0);
        QVERIFY(m_fixture->emptyText(table()).contains("没有权限"));
        QVERIFY(!m_fixture->button("重新检查").isEnabled());
    }

    void anotherServerIsCheckedAnew()
    {
        m_fixture->addShenzhen();
        open();
        showPage();
        const auto old = m_fixture->take(DataType::Finding);
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen));
        const auto latest = m_fixture->take(DataType::Finding);
        QTRY_COMPARE(m_fixture->shanghai->cancelled().size(), std::size_t(1)); // nobody waits for it
        QVERIFY(m_fixture->shenzhen->cancelled().empty());
        m_fixture->answer(old, {makeFinding(1, "旧")});
        m_fixture->answer(latest, {makeFinding(2, "新")});
        QTRY_COMPARE(HistoryFixture::shown(table(), 0), QStringList("新"));
    }

    void aCheckSaysForHowLongItHasRun()
    {
        open();
        showPage();
        QVERIFY(m_fixture->isRead("正在检查，最多25秒…"));
        QVERIFY(!m_fixture->isRead("已用"));
        QCOMPARE(m_fixture->emptyText(table()), QString("正在检查…"));
        QTRY_VERIFY(m_fixture->isRead("正在检查，最多25秒…已用1秒"));
        QTRY_VERIFY(m_fixture->isRead("正在检查，最多25秒…已用") && !m_fixture->isRead("已用1秒"));
        m_fixture->answer(DataType::Finding, {makeFinding(7, "账号已销户")});
        QTRY_VERIFY(m_fixture->isRead("共1项"));
        m_fixture->click("重新检查");
        QVERIFY(m_fixture->isRead("正在检查，最多25秒…"));
        QVERIFY(!m_fixture->isRead("已用")); // it counts anew
    }

    void aCheckIsCancelled()
    {
        open();
        m_fixture->click("刷新");
        showPage();
        const auto query = m_fixture->take(DataType::Finding);
        QVERIFY(!m_fixture->isOffered("重新检查"));
        m_fixture->click("取消检查");
        QVERIFY(m_fixture->isRead("检查已取消"));
        QCOMPARE(m_fixture->emptyText(table()), QString("检查已取消"));
        QTRY_COMPARE(m_fixture->shanghai->cancelled().size(), std::size_t(1));
        const auto underWay = support::centre().requestsUnderWay();
        QCOMPARE(underWay.size(), std::size_t(1)); // the refresh of the changes goes on
        QCOMPARE(underWay.front().dataType, DataType::Audit);
        m_fixture->answer(query, {makeFinding(7, "旧")});
        support::settleCallbacks();
        QVERIFY(m_fixture->isRead("检查已取消"));
        m_fixture->click("重新检查");
        m_fixture->answer(DataType::Finding, {makeFinding(8, "新")});
        QTRY_COMPARE(HistoryFixture::shown(table(), 0), QStringList("新"));
        QCOMPARE(m_fixture->shanghai->cancelled().size(), std::size_t(1));
    }

    void whatOthersAskForIsNotCancelled()
    {
        m_fixture->addShenzhen();
        open();
        const auto check = boost::make_shared<nvservice::CKolmQueryDataReq>();
        check->dataType = DataType::Finding;
        const auto operation = boost::make_shared<nvservice::COperateDataReq>();
        operation->dataType = DataType::Finding;
        operation->data = makeFinding(7, "重名");
        support::centre().getClientByName(Shanghai)->queryData_async(check, {});
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen)); // no check of the page's own is running
        m_fixture->panel->switchSystem(1, QString::fromStdString(Shanghai));
        support::settleCallbacks();
        QVERIFY(m_fixture->shanghai->cancelled().empty());
        m_fixture->answer(DataType::Finding, {});
        support::settleCallbacks();
        support::centre().getClientByName(Shanghai)->operateData_async(operation, {});
        support::centre().getClientByName(Shenzhen)->queryData_async(check, {});
        showPage();
        m_fixture->click("取消检查");
        QTRY_COMPARE(m_fixture->shanghai->cancelled().size(), std::size_t(1));
        support::settleCallbacks();
        QVERIFY(m_fixture->shenzhen->cancelled().empty());
        QCOMPARE(m_fixture->shanghai->cancelled().size(), std::size_t(1));
    }

    void aCheckIsCancelledInTheListOfRequests()
    {
        open();
        showPage();
        m_fixture->take(DataType::Finding);
        support::centre().cancelRequest(support::centre().requestsUnderWay().front().number);
        QTRY_VERIFY(m_fixture->isRead("检查已取消"));
        QVERIFY(m_fixture->isOffered("重新检查"));
    }

    void whoComesBackToACancelledCheckStartsItHimself()
    {
        m_fixture->addShenzhen();
        open();
        showPage();
        m_fixture->take(DataType::Finding);
        m_fixture->click("取消检查");
        tabs().setCurrentIndex(0);
        showPage();
        QCOMPARE(m_fixture->waiting(DataType::Finding), 0);
        QVERIFY(m_fixture->isOffered("重新检查"));
        m_fixture->panel->switchSystem(0, {});
        QVERIFY(!m_fixture->isRead("检查已取消"));
    }

private:
    static nvservice::IDataPtr makeFinding(int groupId, const std::string& kind)
    {
        const auto finding = boost::make_shared<nvservice::CFinding>();
        finding->kind = kind;
        finding->kindName = kind;
        finding->groupId = groupId;
        finding->groupName = groupId == 0 ? "" : "组" + std::to_string(groupId);
        finding->text = "内容" + std::to_string(groupId);
        finding->advice = "处理：" + kind;
        return finding;
    }
    void open() const
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, {makeEntry(1)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
    }
    WQ::CStandardTabControl& tabs() const { return *m_fixture->panel->findChild<WQ::CStandardTabControl*>(); }
    void showPage() const { tabs().setCurrentIndex(1); }
    WQ::CStandardHpfTable& table() const { return m_fixture->table("一致性检查结果"); }
};

TEST_WITH_WIDGETS(HistoryFindingsTest)
#include "tst_history_findings.moc"
