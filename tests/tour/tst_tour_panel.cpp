// SPDX-License-Identifier: Apache-2.0
#include "Hands.h"
#include "TourTest.h"

#include "workbench/CLogInDialog.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>

using namespace tour;
using namespace workbench;

/// Log-in, the table of the groups, search, sort and filter, themes and a restart. The steps build on each other, in
/// the order in which they are declared.
class TourPanelTest : public TourTest
{
    Q_OBJECT

private slots:
    void initTestCase() { m_client = std::make_unique<TourClient>("1-panel"); }

    void aWrongPasswordIsRefusedAndTheRightOneLogsIn()
    {
        CSession& session = m_client->session();
        CLogInDialog dialog(session, m_client->settings(), nullptr);
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        auto* const user = dialog.findChild<QLineEdit*>("user");
        auto* const password = dialog.findChild<QLineEdit*>("password");
        type(*user, "admin");
        type(*password, "wrong");
        m_client->picture("log-in");
        QTest::keyClick(password, Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(!dialog.errorText().isEmpty(), 60000);
        QVERIFY(!session.isLoggedIn());
        m_client->pictures("log-in-refused");
        retype(*password, "admin123");
        QTest::keyClick(password, Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(session.isLoggedIn(), 60000);
        QTRY_VERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), 1);
    }

    void thePanelShowsTheGroupsOfEachServer()
    {
        m_client->start("admin", "admin123");
        QVERIFY(database().servers().size() > 1);
        for (const QString& server : database().servers()) {
            m_client->chooseServer(server);
            const QStringList expected = database().groups(server);
            QVERIFY(!expected.isEmpty());
            QTRY_COMPARE(m_client->shownRows(), expected);
            m_client->picture("groups");
        }
        QVERIFY(findButton(m_client->panel(), "添加账号组"));
        QVERIFY(m_client->table().isColumnVisible(ServerColumn));
    }

    void withAllServersChosenTheTableStaysEmpty()
    {
        m_client->chooseServer(QString());
        QCOMPARE(m_client->shownRows(), QStringList());
        m_client->picture("all-servers");
        m_client->chooseServer(database().servers().first());
        QTRY_COMPARE(m_client->shownRows(), database().groups(database().servers().first()));
    }

    void theSearchFieldFindsGroupsByNameAndPinyin()
    {
        const QStringList names = m_client->shown(NameColumn);
        const QString part = names.first().left(2);
        m_client->search(part);
        QStringList expected;
        for (const QString& name : names) {
            if (name.contains(part, Qt::CaseInsensitive)) {
                expected << name;
            }
        }
        QCOMPARE(m_client->shown(NameColumn), expected);
        QVERIFY(expected.size() < names.size());
        m_client->picture("search");
        m_client->search("duichong");
        QVERIFY(!m_client->shown(NameColumn).isEmpty());
        for (const QString& name : m_client->shown(NameColumn)) {
            QVERIFY2(name.contains("对冲"), qPrintable(name));
        }
        m_client->search("没有这样的组");
        QCOMPARE(m_client->shown(NameColumn), QStringList());
        m_client->picture("search-without-result");
        m_client->search(QString());
        QCOMPARE(m_client->shown(NameColumn), names);
    }

    void aClickOnAHeaderSortsInPinyinOrder()
    {
        QHeaderView* const header = m_client->table().header();
        const auto clickHeader = [&](int column) {
            click(*header->viewport(), QPoint(header->sectionViewportPosition(column) + 12, header->height() / 2));
        };
        clickHeader(CountColumn);
        QList<int> counts;
        for (const QString& count : m_client->shown(CountColumn)) {
            counts << count.toInt();
        }
        QVERIFY(std::is_sorted(counts.begin(), counts.end()));
        clickHeader(InstitutionColumn);
        const QStringList ascending = m_client->shown(InstitutionColumn);
        m_client->picture("sorted");
        clickHeader(InstitutionColumn);
        QStringList descending = m_client->shown(InstitutionColumn);
        QVERIFY(ascending != descending);
        std::reverse(descending.begin(), descending.end());
        QCOMPARE(ascending, descending);
    }

    void aColumnIsFilteredByItsValues()
    {
        QHeaderView* const header = m_client->table().header();
        const int right = header->sectionViewportPosition(InstitutionColumn) + header->sectionSize(InstitutionColumn);
        click(*header->viewport(), QPoint(right - 10, header->height() / 2));
        const auto popup = [&]() -> QWidget* {
            for (QWidget* const widget : QApplication::topLevelWidgets()) {
                if (widget->objectName() == "tableFilterPopup" && widget->isVisible()) {
                    return widget;
                }
            }
            return nullptr;
        };
        QTRY_VERIFY(popup());
        m_client->pictures("filter");
        const QString institution = m_client->shown(InstitutionColumn).first();
        auto* const all = popup()->findChild<QAbstractButton*>("tableFilterAll");
        auto* const values = popup()->findChild<QAbstractItemView*>("tableFilterValues");
        auto* const ok = popup()->findChild<QAbstractButton*>("tableFilterOk");
        QVERIFY(all && values && ok);
        if (all->isChecked()) {
            all->click();
        }
        for (int row = 0; row < values->model()->rowCount(); ++row) {
            const QModelIndex index = values->model()->index(row, 0);
            if (index.data().toString() == institution) {
                values->model()->setData(index, Qt::Checked, Qt::CheckStateRole);
            }
        }
        click(*ok);
        QTRY_VERIFY(!popup());
        QStringList left = m_client->shown(InstitutionColumn);
        QVERIFY(left.size() < database().groups(currentServer()).size());
        left.removeDuplicates();
        QCOMPARE(left, QStringList({institution}));
        m_client->picture("filtered");
    }

    void theRefreshButtonLoadsUnderAMask()
    {
        clickButton(m_client->panel(), "立即刷新");
        QVERIFY(m_client->mask().isVisible());
        m_client->picture(m_client->window(), "loading");
        m_client->waitUntilLoaded();
        QTRY_COMPARE(m_client->shownRows(), database().groups(currentServer()));
    }

    void theThemeSwitchesLive()
    {
        CMainWindow& window = m_client->window();
        const QImage dark = window.grab().toImage();
        QVERIFY(window.switchTheme("light"));
        m_client->picture("light");
        const QImage light = window.grab().toImage();
        const QPoint inTable = m_client->table().mapTo(&window, m_client->table().rect().center());
        QVERIFY(dark.pixelColor(inTable).lightness() < 100);
        QVERIFY(light.pixelColor(inTable).lightness() > 155);
        QVERIFY(window.switchTheme("dark"));
    }

    void theLayoutSurvivesARestart()
    {
        m_client->table().setColumnWidth(NameColumn, 277);
        m_client->table().sortByColumn(NameColumn, Qt::AscendingOrder);
        const QString server = database().servers().last();
        m_client->chooseServer(server);
        m_client->start("admin", "admin123");
        QCOMPARE(currentServer(), server);
        QTRY_COMPARE(m_client->shownRows(), database().groups(server));
        QCOMPARE(m_client->table().columnWidth(NameColumn), 277);
        m_client->picture("after-restart");
    }

private:
    QString currentServer() { return m_client->window().currentServer(); }
};

TEST_WITH_WIDGETS(TourPanelTest)
#include "tst_tour_panel.moc"
