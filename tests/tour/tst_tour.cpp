#include "TourDatabase.h"

#include "workbench/CInstallation.h"
#include "workbench/CLogInDialog.h"
#include "workbench/CMainWindow.h"
#include "workbench/CSession.h"
#include "workbench/CUserSettings.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/IkolmDockableWidget.h>
#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/IBaseHpfTableModel.h>
#include <luawrapper/LuaModuleCtrl.h>
#include <nvservice/MetaTypes.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QListView>
#include <QPushButton>
#include <QtTest>

#include <memory>

using namespace workbench;

namespace
{

const QString PanelClass = QStringLiteral("QAV::CAccountGroupRiskManagePanel");

enum Column { Name, Count, Institution, Server, Operation };

} // namespace

/// Plays the client from log-in to restart. The steps build on each other, in the order in which they are declared.
class TestTour : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void aWrongPasswordIsRefusedAndTheRightOneLogsIn();
    void thePanelShowsTheGroupsOfEachServer();
    void withAllServersChosenTheTableStaysEmpty();
    void theSearchFieldFindsGroupsByNameAndPinyin();
    void aClickOnAHeaderSortsInPinyinOrder();
    void aColumnIsFilteredByItsValues();
    void theRefreshButtonLoadsUnderAMask();
    void theThemeSwitchesLive();
    void theLayoutSurvivesARestart();
    void aUserWithoutRightsSeesNoButtons();
    void aUserOfOneInstitutionSeesItsGroupsOnly();

private:
    void startClient(const QString& user, const QString& password);
    void stopClient();
    void chooseServer(const QString& server);
    void search(const QString& text);
    void picture(QWidget* widget, const QString& name);
    QPushButton* button(const QString& text) const;
    QStringList shownRows() const;
    QStringList shown(int column) const;

    QAV::IkolmDockableWidget* panel() const { return m_window->panel(PanelClass); }
    WQ::CStandardHpfTable* table() const { return panel()->findChild<WQ::CStandardHpfTable*>(); }
    WQ::CLoadingMaskWidget* mask() const { return panel()->findChild<WQ::CLoadingMaskWidget*>(); }
    WQ::CLineEdit* searchEdit() const { return panel()->findChild<WQ::CLineEdit*>(); }

    QTemporaryDir m_folder;
    QString m_pictures;
    int m_pictureCount = 0;
    std::unique_ptr<CInstallation> m_installation;
    std::unique_ptr<tour::TourDatabase> m_database;
    std::unique_ptr<CUserSettings> m_settings;
    std::unique_ptr<CPluginCatalogue> m_plugins;
    std::unique_ptr<CSession> m_session;
    std::unique_ptr<CMainWindow> m_window;
};

void TestTour::initTestCase()
{
    nvservice::registerMetaTypes();
    m_pictures = qEnvironmentVariable("QAV_TOUR_FOLDER", m_folder.filePath("pictures"));
    QVERIFY(QDir().mkpath(m_pictures));
    QVERIFY(utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->load(QAV_MODULE_FILE).isSuccess());
    QVERIFY(WQ::CUiResourceManager::instance()->setTheme("dark"));
    WQ::CUiResourceManager::instance()->applyTo(*qApp);

    m_installation = std::make_unique<CInstallation>();
    const QString file = m_folder.filePath("tour.db");
    const utils::NVError opened = m_installation->open(file, SampleSize());
    QVERIFY2(opened.isSuccess(), opened.errorMsg().c_str());
    m_database = std::make_unique<tour::TourDatabase>(file);
    m_settings = std::make_unique<CUserSettings>(m_folder.filePath("client.ini"));
    m_session = std::make_unique<CSession>();
}

void TestTour::cleanupTestCase()
{
    stopClient();
    m_session.reset();
    m_database.reset();
    m_installation.reset();
    utils::CSingletonT<QAV::CKolmClientCenter>::instance()->shutDown();
}

void TestTour::aWrongPasswordIsRefusedAndTheRightOneLogsIn()
{
    CLogInDialog dialog(*m_session, *m_settings, nullptr);
    dialog.show();
    auto* const user = dialog.findChild<QLineEdit*>("user");
    auto* const password = dialog.findChild<QLineEdit*>("password");
    QTest::keyClicks(user, "admin");
    QTest::keyClicks(password, "wrong");
    picture(&dialog, "log-in");
    QTest::keyClick(password, Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(!dialog.errorText().isEmpty(), 60000);
    QVERIFY(!m_session->isLoggedIn());
    picture(&dialog, "log-in-refused");
    password->clear();
    QTest::keyClicks(password, "admin123");
    QTest::keyClick(password, Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(m_session->isLoggedIn(), 60000);
    QTRY_VERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), 1);
}

void TestTour::startClient(const QString& user, const QString& password)
{
    stopClient();
    bool done = false;
    utils::NVError error;
    m_session->logIn(user, password, [&](const CSession::Outcome& outcome) {
        error = outcome.error;
        done = true;
    });
    QTRY_VERIFY_WITH_TIMEOUT(done, 60000);
    QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
    m_plugins = std::make_unique<CPluginCatalogue>();
    m_plugins->scan({QAV_PLUGIN_FOLDER});
    m_window = std::make_unique<CMainWindow>(*m_session, *m_settings, *m_plugins);
    m_window->restoreLayout();
    m_window->show();
    m_window->resize(1280, 800);
    QVERIFY2(panel(),
             qPrintable(m_plugins->entries().empty() ? QString("no plug-in") : m_plugins->entries()[0].problem));
}

void TestTour::stopClient()
{
    if (!m_window)
        return;
    m_window->close();
    m_window.reset();
    m_session->logOut();
}

void TestTour::chooseServer(const QString& server)
{
    auto* const box = m_window->findChild<QComboBox*>("serverBox");
    QVERIFY(box);
    box->setFocus();
    const int wanted = m_window->serverChoices().indexOf(server);
    QVERIFY(wanted >= 0);
    while (box->currentIndex() != wanted)
        QTest::keyClick(box, box->currentIndex() < wanted ? Qt::Key_Down : Qt::Key_Up);
    QTRY_COMPARE(m_window->currentServer(), server);
    QTRY_VERIFY_WITH_TIMEOUT(mask()->isHidden(), 60000);
}

void TestTour::search(const QString& text)
{
    searchEdit()->clear();
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(searchEdit(), &event);
    QTest::keyClick(searchEdit(), Qt::Key_Return);
}

void TestTour::picture(QWidget* widget, const QString& name)
{
    QCoreApplication::processEvents();
    const QString file =
        QString("%1/%2-%3.png").arg(m_pictures).arg(++m_pictureCount, 2, 10, QLatin1Char('0')).arg(name);
    QVERIFY(widget->grab().save(file));
}

QPushButton* TestTour::button(const QString& text) const
{
    for (QPushButton* const button : panel()->findChildren<QPushButton*>()) {
        if (button->text() == text && button->isVisible())
            return button;
    }
    return nullptr;
}

QStringList TestTour::shownRows() const
{
    QStringList rows;
    const QAbstractItemModel& view = *table()->view()->model();
    for (int row = 0; row < view.rowCount(); ++row) {
        QStringList cells;
        for (const int column : {Name, Count, Institution, Server})
            cells << view.index(row, column).data().toString();
        rows << cells.join('|');
    }
    rows.sort();
    return rows;
}

QStringList TestTour::shown(int column) const
{
    QStringList texts;
    const QAbstractItemModel& view = *table()->view()->model();
    for (int row = 0; row < view.rowCount(); ++row)
        texts << view.index(row, column).data().toString();
    return texts;
}

void TestTour::thePanelShowsTheGroupsOfEachServer()
{
    startClient("admin", "admin123");
    QVERIFY(m_database->servers().size() > 1);
    for (const QString& server : m_database->servers()) {
        chooseServer(server);
        const QStringList expected = m_database->groups(server);
        QVERIFY(!expected.isEmpty());
        QTRY_COMPARE(shownRows(), expected);
        picture(m_window.get(), "groups");
    }
    QVERIFY(button("添加账号组"));
    QVERIFY(table()->isColumnVisible(Server));
}

void TestTour::withAllServersChosenTheTableStaysEmpty()
{
    chooseServer(QString());
    QCOMPARE(shownRows(), QStringList());
    picture(m_window.get(), "all-servers");
    chooseServer(m_database->servers().first());
    QTRY_COMPARE(shownRows(), m_database->groups(m_database->servers().first()));
}

void TestTour::theSearchFieldFindsGroupsByNameAndPinyin()
{
    const QStringList names = shown(Name);
    const QString part = names.first().left(2);
    search(part);
    QStringList expected;
    for (const QString& name : names) {
        if (name.contains(part, Qt::CaseInsensitive))
            expected << name;
    }
    QCOMPARE(shown(Name), expected);
    QVERIFY(expected.size() < names.size());
    picture(m_window.get(), "search");
    search("duichong");
    for (const QString& name : shown(Name))
        QVERIFY2(name.contains("对冲"), qPrintable(name));
    search("没有这样的组");
    QCOMPARE(shown(Name), QStringList());
    picture(m_window.get(), "search-without-result");
    search(QString());
    QCOMPARE(shown(Name), names);
}

void TestTour::aClickOnAHeaderSortsInPinyinOrder()
{
    QHeaderView* const header = table()->header();
    const auto click = [&](int column) {
        const QPoint point(header->sectionViewportPosition(column) + 12, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, point);
    };
    click(Count);
    QList<int> counts;
    for (const QString& count : shown(Count))
        counts << count.toInt();
    QVERIFY(std::is_sorted(counts.begin(), counts.end()));
    click(Institution);
    const QStringList ascending = shown(Institution);
    picture(m_window.get(), "sorted");
    click(Institution);
    QStringList descending = shown(Institution);
    QVERIFY(ascending != descending);
    std::reverse(descending.begin(), descending.end());
    QCOMPARE(ascending, descending);
}

void TestTour::aColumnIsFilteredByItsValues()
{
    QHeaderView* const header = table()->header();
    const QPoint filterButton(header->sectionViewportPosition(Institution) + header->sectionSize(Institution) - 10,
                              header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, filterButton);
    const auto popup = [&]() -> QWidget* {
        for (QWidget* const widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == "tableFilterPopup" && widget->isVisible())
                return widget;
        }
        return nullptr;
    };
    QTRY_VERIFY(popup());
    picture(popup(), "filter");
    const QString institution = shown(Institution).first();
    auto* const all = popup()->findChild<QAbstractButton*>("tableFilterAll");
    auto* const values = popup()->findChild<QAbstractItemView*>("tableFilterValues");
    auto* const ok = popup()->findChild<QAbstractButton*>("tableFilterOk");
    QVERIFY(all && values && ok);
    if (all->isChecked())
        all->click();
    for (int row = 0; row < values->model()->rowCount(); ++row) {
        const QModelIndex index = values->model()->index(row, 0);
        if (index.data().toString() == institution)
            values->model()->setData(index, Qt::Checked, Qt::CheckStateRole);
    }
    QTest::mouseClick(ok, Qt::LeftButton);
    QTRY_VERIFY(!popup());
    QStringList left = shown(Institution);
    QVERIFY(left.size() < m_database->groups(m_window->currentServer()).size());
    left.removeDuplicates();
    QCOMPARE(left, QStringList({institution}));
    picture(m_window.get(), "filtered");
}

void TestTour::theRefreshButtonLoadsUnderAMask()
{
    QTest::mouseClick(button("立即刷新"), Qt::LeftButton);
    QVERIFY(mask()->isVisible());
    QVERIFY(m_window->grab().save(QString("%1/%2-loading.png").arg(m_pictures).arg(++m_pictureCount)));
    QTRY_VERIFY_WITH_TIMEOUT(mask()->isHidden(), 60000);
    QTRY_COMPARE(shownRows(), m_database->groups(m_window->currentServer()));
}

void TestTour::theThemeSwitchesLive()
{
    const QImage dark = m_window->grab().toImage();
    QVERIFY(m_window->switchTheme("light"));
    picture(m_window.get(), "light");
    const QImage light = m_window->grab().toImage();
    const QPoint inTable = table()->mapTo(m_window.get(), table()->rect().center());
    QVERIFY(dark.pixelColor(inTable).lightness() < 100);
    QVERIFY(light.pixelColor(inTable).lightness() > 155);
    QVERIFY(m_window->switchTheme("dark"));
}

void TestTour::theLayoutSurvivesARestart()
{
    table()->setColumnWidth(Name, 277);
    table()->sortByColumn(Name, Qt::AscendingOrder);
    const QString server = m_database->servers().last();
    chooseServer(server);
    startClient("admin", "admin123");
    QCOMPARE(m_window->currentServer(), server);
    QTRY_COMPARE(shownRows(), m_database->groups(server));
    QCOMPARE(table()->columnWidth(Name), 277);
    picture(m_window.get(), "after-restart");
}

void TestTour::aUserWithoutRightsSeesNoButtons()
{
    startClient("viewer", "viewer123");
    chooseServer(m_database->servers().first());
    QTRY_COMPARE(shownRows(), m_database->groups(m_database->servers().first()));
    QVERIFY(!button("添加账号组"));
    const auto* const delegate =
        dynamic_cast<WQ::CBaseTableColumnMultiButtonsDelegate*>(table()->columnDelegate(Operation));
    const WQ::IBaseHpfTableModel& model = *table()->dataModel();
    for (int row = 0; row < model.rowCount(); ++row)
        QCOMPARE(delegate->itemButtons(model.getDataByRow(row)->getKey()).size(), 0);
    picture(m_window.get(), "without-rights");
}

void TestTour::aUserOfOneInstitutionSeesItsGroupsOnly()
{
    startClient("bound", "bound123");
    const QString server = m_database->servers().first();
    chooseServer(server);
    const QStringList expected = m_database->groups(server, 1);
    QVERIFY(!expected.isEmpty());
    QVERIFY(expected.size() < m_database->groups(server).size());
    QTRY_COMPARE(shownRows(), expected);
    QVERIFY(!table()->isColumnVisible(Server));
    picture(m_window.get(), "bound-user");
}

QTEST_MAIN(TestTour)
#include "tst_tour.moc"
