// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"

#include <WQ/CStandardTabControl.h>

#include <QDockWidget>
#include <QLineEdit>
#include <QMainWindow>

using namespace history_test;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

/// The panel in its client: servers, notices of changes, the layout.
class HistoryPanelTest : public HistoryTest
{
    Q_OBJECT

private slots:
    void aNoticeSaysWhoChangedSomethingAndMovesNothing()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->changes().setCurrentKey("SH|290");
        const QRect place = m_fixture->changes().geometry();
        m_fixture->panel->onChanged("别的分系统", {makeChange(400)}, true);
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400)}, true);
        QVERIFY(m_fixture->isRead("有新的修改：李岚（lan）"));
        QCoreApplication::processEvents();
        QCOMPARE(m_fixture->changes().geometry(), place);
        QCOMPARE(m_fixture->changes().currentKey(), QString("SH|290"));
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0); // the user decides
        m_fixture->click("刷新");
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->answer(DataType::Audit, makeEntries(301, 202), "c1");
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {}, false);
        QVERIFY(m_fixture->isRead("可能有新的修改"));
    }

    void whatTheTableShowsAlreadyIsNoNews()
    {
        m_fixture->open();
        const auto refused = makeEntry(11);
        refused->outcome = 7;
        m_fixture->answer(DataType::Audit, {refused, makeEntry(10), makeEntry(9, 8), makeEntry(8)});
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 4);
        const QString server = QString::fromStdString(Shanghai);
        m_fixture->panel->onChanged(server, {makeChange(10), makeChange(9, 8), makeChange(8)}, true);
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(server, {makeChange(10, 8)}, true); // another group at the same time
        QVERIFY(m_fixture->isRead("有新的修改"));
        m_fixture->click("刷新");
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(server, {makeChange(11)}, true); // that one was refused
        QVERIFY(m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(server, {makeChange(12)}, true);
        m_fixture->answer(DataType::Audit, {makeEntry(12), refused, makeEntry(10)}, "c2"); // which is in the answer
        QTRY_VERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->choose("结果", "成功");
        m_fixture->panel->onChanged(server, {makeChange(13)}, true); // before the first page
        QVERIFY(m_fixture->isRead("有新的修改"));
        m_fixture->answer(DataType::Audit, {makeEntry(13)});
        QTRY_VERIFY(!m_fixture->isRead("有新的修改"));
    }

    void theLatestOfSeveralChangesIsSaid()
    {
        m_fixture->open();
        m_fixture->answer(DataType::Audit, {makeEntry(1)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        const auto other = makeChange(402);
        other->userId = "chen";
        other->userName = "陈重";
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400), other, makeChange(401)}, true);
        QVERIFY(m_fixture->isRead("有新的修改：陈重（chen） " + QAV::timeText(other->changedAt)));
    }

    void aNoticeOfAnotherGroupThanTheChosenOneIsNone()
    {
        m_fixture->open();
        m_fixture->type("账号组", "wenjian");
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400, 8)}, true);
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400, 7)}, true);
        QVERIFY(m_fixture->isRead("有新的修改"));
    }

    void anotherServerBeginsWithASearchOfItsOwn()
    {
        m_fixture->addShenzhen();
        m_fixture->open();
        answerFirst();
        m_fixture->type("账号组", "wenjian");
        m_fixture->take(DataType::Audit);
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen));
        QCOMPARE(m_fixture->changes().dataModel()->getDataCount(), 0);
        QVERIFY(!m_fixture->lastAsked().has(QueryCondition::Group));
        m_fixture->panel->switchSystem(0, {});
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        QCOMPARE(m_fixture->emptyText(m_fixture->changes()), QString());
    }

    void aHiddenPanelAsksWhenItIsActivated()
    {
        m_fixture->addShenzhen();
        m_fixture->open();
        answerFirst();
        m_fixture->panel->hide();
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen));
        QCOMPARE(m_fixture->changes().dataModel()->getDataCount(), 0);
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->panel->show();
        m_fixture->panel->onActive();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 1);
    }

    void aPanelBehindAnotherAsksWhenItComesToTheFront()
    {
        m_fixture->addShenzhen();
        Docks docks(*m_fixture);
        docks.history.raise();
        answerFirst();
        m_fixture->panel->findChild<WQ::CStandardTabControl*>()->setCurrentIndex(1);
        m_fixture->answer(DataType::Finding, {});
        docks.other.raise();
        QCoreApplication::processEvents();
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen));
        QCOMPARE(m_fixture->changes().dataModel()->getDataCount(), 0);
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        QCOMPARE(m_fixture->waiting(DataType::Finding), 0);
        docks.history.raise();
        QCoreApplication::processEvents();
        m_fixture->panel->onActive();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 1);
        QCOMPARE(m_fixture->waiting(DataType::Finding), 1);
        m_fixture->panel->switchSystem(1, QString::fromStdString(Shanghai)); // in front
        QCOMPARE(m_fixture->waiting(DataType::Audit), 2);
        docks.history.setFloating(true);
        QCoreApplication::processEvents();
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen)); // in a window of its own
        QCOMPARE(m_fixture->waiting(DataType::Audit), 3);
    }

    void aPanelBehindAnotherLoadsOnePage_data()
    {
        const support::DataRows<bool> row("isClosed");
        row("closed", true);
        row("behind another", false);
    }
    void aPanelBehindAnotherLoadsOnePage()
    {
        QFETCH(bool, isClosed);
        Docks docks(*m_fixture);
        if (isClosed) {
            docks.history.close();
        } else {
            docks.other.raise();
        }
        QCoreApplication::processEvents();
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
    }

    void whatChangesWhileThePanelIsHiddenIsThereWhenItIsActivated()
    {
        m_fixture->addShenzhen();
        m_fixture->open();
        answerFirst();
        m_fixture->panel->hide();
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400)}, true);
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->panel->show();
        QVERIFY(m_fixture->isRead("有新的修改"));
        m_fixture->panel->onActive();
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->answer(DataType::Audit, {makeEntry(400), makeEntry(1)});
        QTRY_VERIFY(m_fixture->isRead("共2条"));
        // After a switch there is nothing yet that a change could be missing from.
        m_fixture->panel->hide();
        m_fixture->panel->switchSystem(2, QString::fromStdString(Shenzhen));
        m_fixture->panel->onChanged(QString::fromStdString(Shenzhen), {makeChange(401)}, true);
        support::settleCallbacks();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
        m_fixture->panel->show();
        m_fixture->panel->onActive();
        QVERIFY(!m_fixture->isRead("有新的修改"));
        m_fixture->answer(DataType::Audit, {makeEntry(401)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
        QCOMPARE(m_fixture->waiting(DataType::Audit), 0);
    }

    void aPanelThatIsSeenInPartAsks()
    {
        m_fixture->open();
        m_fixture->take(DataType::Audit);
        QWidget window;
        window.resize(600, 400);
        m_fixture->panel->setParent(&window);
        m_fixture->panel->setGeometry(-700, 0, 1200, 760);
        m_fixture->panel->show();
        window.show();
        m_fixture->panel->switchSystem(1, QString::fromStdString(Shanghai));
        const int asked = m_fixture->waiting(DataType::Audit);
        m_fixture->panel->setParent(nullptr);
        QCOMPARE(asked, 1);
    }

    void theActivationAfterTheSwitchAsksOnce()
    {
        m_fixture->open();
        m_fixture->panel->onActive();
        QCOMPARE(m_fixture->waiting(DataType::Audit), 1);
    }

    void theFirstEditIsTheSearchAndTheFirstTableTheChanges()
    {
        m_fixture->open();
        const QList<QLineEdit*> edits = m_fixture->panel->findChildren<QLineEdit*>();
        const auto first = std::find_if(edits.begin(), edits.end(), [](QLineEdit* edit) { return edit->isVisible(); });
        QCOMPARE((*first)->accessibleName(), QString("账号组"));
        QCOMPARE(m_fixture->panel->findChildren<WQ::CStandardHpfTable*>().first(), &m_fixture->changes());
    }

    void theLayoutIsKept()
    {
        m_fixture->open();
        m_fixture->changes().setColumnWidth(QAV::UserColumn, 321);
        m_fixture->comparison().setColumnWidth(2, 234);
        const QString param = m_fixture->panel->param();
        QAV::CHistoryPanel next(nullptr);
        next.setParam("nonsense;;;");
        next.setParam(param);
        QCOMPARE(next.param().section(';', 0, 2), param.section(';', 0, 2));
    }

    void aLateAnswerFindsNobody()
    {
        m_fixture->open();
        const auto query = m_fixture->take(DataType::Audit);
        m_fixture->panel.reset();
        m_fixture->answer(query, {makeEntry(1)});
        support::settleCallbacks();
    }

private:
    /// The client's window with the panel in one of two docks that share a place.
    struct Docks {
        explicit Docks(HistoryFixture& fixture) : history(add()), other(add()), panel(fixture.open())
        {
            history.setWidget(&panel);
            window.tabifyDockWidget(&history, &other);
            window.resize(1200, 760);
            window.show();
        }
        ~Docks() { panel.setParent(nullptr); }

        QDockWidget& add()
        {
            auto* const dock = new QDockWidget(&window);
            window.addDockWidget(Qt::LeftDockWidgetArea, dock);
            return *dock;
        }

        QMainWindow window;
        QDockWidget& history;
        QDockWidget& other;
        QAV::CHistoryPanel& panel;
    };
    void answerFirst() const
    {
        m_fixture->answer(DataType::Audit, {makeEntry(1)});
        QTRY_VERIFY(m_fixture->isRead("共1条"));
    }
};

TEST_WITH_WIDGETS(HistoryPanelTest)
#include "tst_history_panel.moc"
