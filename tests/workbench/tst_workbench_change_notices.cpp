// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"
#include "support/records/Requests.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>

namespace DataType = nvservice::DataType;

/// What the client says of changes that others make.
class ChangeNoticesTest : public MainWindowFixture
{
    Q_OBJECT

    static nvservice::CChangeInfoPtr change(int groupId, const std::string& user = "李岚", int minute = 2,
                                            const std::string& operationId = {})
    {
        auto info = boost::make_shared<nvservice::CChangeInfo>();
        info->dataType = DataType::AccountGroup;
        info->groupId = groupId;
        info->groupName = "组" + std::to_string(groupId);
        info->userId = "lilan";
        info->userName = user;
        info->changedAt = QDateTime(QDate::currentDate(), QTime(14, minute)).toMSecsSinceEpoch();
        info->operationId = operationId;
        return info;
    }

    QToolButton& notice(const QString& className = Noting)
    {
        return *dockOf(*m_window, className)->findChild<QToolButton*>("changeNotice");
    }
    QString shown(const QString& className = Noting)
    {
        const QToolButton& button = notice(className);
        return button.isHidden() ? QString() : button.text();
    }
    void tell(std::vector<nvservice::CChangeInfoPtr> changes, bool isComplete = true)
    {
        m_transport->tellChanges({std::move(changes), isComplete});
        support::settleCallbacks();
        QCoreApplication::processEvents();
    }
    QAV::IkolmDockableWidget& startOnB()
    {
        start();
        QAV::IkolmDockableWidget& panel = *m_window->openPanel(Noting);
        m_window->switchServer("B");
        [&] { QTRY_VERIFY(seenCalls(&panel).contains("onActive")); }();
        callsOf(&panel);
        return panel;
    }

private slots:
    void theTitleSaysWhatOthersHaveChanged()
    {
        startOnB();
        QCOMPARE(shown(), QString());
        tell({change(1, "王五", 1), change(2)});
        QCOMPARE(shown(), QString("2个账号组已被修改（李岚 14:02）"));
        tell({change(2, "王五", 1), change(3, "赵六", 30)});
        QCOMPARE(shown(), QString("3个账号组已被修改（赵六 14:30）"));
        QCOMPARE(notice().accessibleName(), QString("3个账号组已被修改（赵六 14:30），刷新"));
        tell({change(4, {}, 31)});
        QCOMPARE(shown(), QString("4个账号组已被修改（lilan 14:31）"));
        tell({}, false);
        QCOMPARE(shown(), QString("账号组可能已被修改"));
    }

    void anotherDayIsNamed()
    {
        startOnB();
        auto info = boost::make_shared<nvservice::CChangeInfo>(*change(1));
        info->changedAt = QDateTime(QDate(2026, 1, 5), QTime(9, 30)).toMSecsSinceEpoch();
        tell({info});
        QCOMPARE(shown(), QString("1个账号组已被修改（李岚 01-05 09:30）"));
    }

    void theNoticeRefreshesThePanelAndGoes_data()
    {
        const support::DataRows<bool> row("byKey");
        row("a click", false);
        row("the command to refresh", true);
    }
    void theNoticeRefreshesThePanelAndGoes()
    {
        QFETCH(bool, byKey);
        QAV::IkolmDockableWidget& panel = startOnB();
        tell({change(1)});
        QVERIFY(callsOf(&panel).isEmpty()); // until the user wants it
        if (byKey) {
            m_window->refreshCurrentPanel();
        } else {
            QTest::mouseClick(&notice(), Qt::LeftButton);
        }
        QCOMPARE(callsOf(&panel), QStringList("onActive"));
        QCOMPARE(shown(), QString());
        tell({change(2)});
        QCOMPARE(shown(), QString("1个账号组已被修改（李岚 14:02）"));
    }

    void aNoticeMovesNothing()
    {
        startOnB();
        m_window->panel(Noting)->setFocus();
        const QWidget* const focused = QApplication::focusWidget();
        const QRect before = m_window->panel(Noting)->geometry();
        tell({change(1)});
        QVERIFY(notice().isVisible());
        QCoreApplication::processEvents();
        QCOMPARE(m_window->panel(Noting)->geometry(), before);
        QCOMPARE(QApplication::focusWidget(), focused);
        QVERIFY(notice().focusPolicy() == Qt::NoFocus);
    }

    void ofOtherServersOnlyThePanelOfAllServersTells()
    {
        startOnB();
        m_window->openPanel(Staying);
        m_window->switchServer("A");
        tell({change(1)}); // by B
        QCOMPARE(shown(Noting), QString());
        QCOMPARE(shown(Staying), QString("1个账号组已被修改（李岚 14:02）"));
    }

    void anotherServerTakesTheNoticeAway()
    {
        startOnB();
        tell({change(1)});
        m_window->switchServer("A");
        QCOMPARE(shown(), QString());
    }

    void theOwnChangesAreNoNews()
    {
        startOnB();
        support::centre().getClientByName("B")->operateData_async(
            support::shared(support::operationOn(DataType::AccountGroup, nvservice::EZvDataOperation::Add,
                                                 boost::make_shared<nvservice::CAccountGroup>(), "own")),
            {});
        m_transport->takeOperation().handler({});
        tell({change(1, "风控员", 2, "own")});
        QCOMPARE(shown(), QString());
        tell({change(1), change(2)});
        QCOMPARE(shown(), QString("2个账号组已被修改（李岚 14:02）"));
        tell({change(1, "风控员", 3, "own")});
        QCOMPARE(shown(), QString("1个账号组已被修改（李岚 14:02）"));
        tell({change(3, "风控员", 4, "of another desk")});
        QCOMPARE(shown(), QString("2个账号组已被修改（风控员 14:04）"));
    }

    void whoChangedWhatWasSavedHereSinceIsNotNamed()
    {
        startOnB();
        support::centre().getClientByName("B")->operateData_async(
            support::shared(support::operationOn(DataType::AccountGroup, nvservice::EZvDataOperation::Modify,
                                                 boost::make_shared<nvservice::CAccountGroup>(), "own")),
            {});
        m_transport->takeOperation().handler({});
        tell({change(1, "王五", 1), change(2, "赵六", 30)});
        QCOMPARE(shown(), QString("2个账号组已被修改（赵六 14:30）"));
        tell({change(2, "风控员", 31, "own")});
        QCOMPARE(shown(), QString("1个账号组已被修改（王五 14:01）"));
        // Changes that were merged come in any order.
        tell({change(2, "赵六", 33), change(2, "风控员", 32, "own"), change(2, "王五", 31)});
        QCOMPARE(shown(), QString("2个账号组已被修改（赵六 14:33）"));
    }

    void aPanelThatListensIsToldAndHasNoNotice()
    {
        QVERIFY(QFile::copy(support::builtFile("tests/workbench/fixtures/plugins/16-listening.plugin.json"),
                            m_plugins.filePath("16-listening.plugin.json")));
        const QString listening = "fixtures::CListeningPanel";
        start();
        QFile::remove(m_plugins.filePath("16-listening.plugin.json"));
        QAV::IkolmDockableWidget& panel = *m_window->openPanel(listening);
        m_window->switchServer("A");
        QTRY_VERIFY(seenCalls(&panel).contains("onActive"));
        callsOf(&panel);
        m_log->allow("everything has changed");
        tell({change(1), change(2)});
        tell({}, false);
        QCOMPARE(callsOf(&panel), QStringList({"onChanged B 2", "onChanged B 0"}));
        QCOMPARE(shown(listening), QString());
    }

    void whileADialogIsOpenTheStatusBarSaysWhatHasChanged()
    {
        startOnB();
        tell({change(1)});
        QVERIFY(m_window->statusBar()->currentMessage().isEmpty());
        QDialog dialog(m_window->panel(Noting));
        dialog.setModal(true);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        tell({change(7)});
        QCOMPARE(m_window->statusBar()->currentMessage(), QString("账号组“组7”刚刚被李岚修改（14:02）"));
    }

    void picturesAreTakenWhereTheEnvironmentSays()
    {
        startOnB();
        tell({change(1), change(2), change(3)});
        for (const char* theme : {"dark", "light"}) {
            QVERIFY(m_window->switchTheme(theme));
            QCoreApplication::processEvents();
            QVERIFY(notice().width() >= notice().fontMetrics().horizontalAdvance(notice().text()) + 16);
            const QImage picture = m_window->grab().toImage();
            const QPoint at = notice().mapTo(m_window.get(), QPoint(0, 0));
            int coloured = 0;
            const QColor warning = WQ::CUiResourceManager::instance()->colour("clr_warning");
            for (int x = at.x(); x < at.x() + notice().width(); ++x) {
                for (int y = at.y(); y < at.y() + notice().height(); ++y) {
                    coloured += picture.pixelColor(x, y) == warning ? 1 : 0;
                }
            }
            QVERIFY2(coloured > 50, qPrintable(QString("%1 %2").arg(theme).arg(coloured)));
            const QString folder = qEnvironmentVariable("QAV_PICTURES");
            if (!folder.isEmpty()) {
                QVERIFY(picture.save(folder + "/change-notice-" + theme + ".png"));
            }
        }
    }
};

TEST_WITH_WIDGETS(ChangeNoticesTest)
#include "tst_workbench_change_notices.moc"
