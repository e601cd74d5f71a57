// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"
#include "support/TestProgram.h"

#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/CUiResourceManager.h>

#include <QLineEdit>
#include <QTabBar>

class TabControlTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        test::setTheme(QStringLiteral("dark"));
        m_panel = std::make_unique<test::RecordingPanel>();
        m_tabs = new WQ::CStandardTabControl(m_panel.get());
        m_panel->setInnerStretchWidget(m_tabs, 0, 0, 0, 0);
        for (const QString& text :
             {QStringLiteral("黑白名单"), QStringLiteral("资产组合风控"), QStringLiteral("对敲交易设置")}) {
            auto* const page = new QWidget(m_tabs);
            auto* const edit = new QLineEdit(page);
            edit->setGeometry(10, 10, 100, 24);
            m_tabs->addTabWidget(text, page);
        }
        test::showActive(*m_panel, {500, 200});
    }

    void pagesComeInOrderUnderTheirTexts()
    {
        QCOMPARE(m_tabs->count(), 3);
        QCOMPARE(m_tabs->tabText(1), QStringLiteral("资产组合风控"));
        QCOMPARE(m_tabs->currentIndex(), 0);
        QVERIFY(m_tabs->tabWidget(0)->isVisible());
        QVERIFY(!m_tabs->tabWidget(1)->isVisible());
        QCOMPARE(m_tabs->tabWidget(3), nullptr);
        QCOMPARE(m_tabs->addTabWidget(QStringLiteral("x"), nullptr), -1);
        QCOMPARE(m_tabs->count(), 3);
    }

    void aClickOnATabShowsItsPage()
    {
        QTabBar* const bar = m_tabs->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(2).center());
        QCOMPARE(m_tabs->currentIndex(), 2);
        QVERIFY(m_tabs->tabWidget(2)->isVisible());
        QVERIFY(m_panel->events.isEmpty());
    }

    void ctrlTabGoesRoundFromInsideAPage()
    {
        m_tabs->tabWidget(0)->findChild<QLineEdit*>()->setFocus();
        for (const int expected : {1, 2, 0}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
            QCOMPARE(m_tabs->currentIndex(), expected);
            QVERIFY(m_tabs->isAncestorOf(QApplication::focusWidget()));
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(m_tabs->currentIndex(), 2);
    }

    void arrowsHomeAndEndWorkInTheBar()
    {
        QTabBar* const bar = m_tabs->tabBar();
        bar->setFocus();
        QTest::keyClick(bar, Qt::Key_Right);
        QCOMPARE(m_tabs->currentIndex(), 1);
        QTest::keyClick(bar, Qt::Key_End);
        QCOMPARE(m_tabs->currentIndex(), 2);
        QTest::keyClick(bar, Qt::Key_Left);
        QCOMPARE(m_tabs->currentIndex(), 1);
        m_tabs->setTabEnabled(0, false);
        QTest::keyClick(bar, Qt::Key_Home);
        QCOMPARE(m_tabs->currentIndex(), 1);
    }

    void eventsOfAPageGoThroughToThePanelAbove()
    {
        auto* const button = new WQ::CSmallNormalButton(42, true, 1, m_tabs->tabWidget(0));
        button->setGeometry(10, 50, 60, 24);
        button->show();
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(m_panel->events, QVector<test::RecordingPanel::Event>({{5, 42, 0}}));
    }

    void thePicturesOfTheThemeAreThere()
    {
        for (const QString& theme : WQ::CUiResourceManager::instance()->themes()) {
            test::setTheme(theme);
            const QStringList keys = WQ::CUiResourceManager::instance()->imageKeys();
            for (const char* const key : {"qav_img_tab_page_top_1", "qav_img_tab_page_top", "qav_img_tab_page_top_i_1",
                                          "qav_img_tab_page_top_i"}) {
                QVERIFY2(keys.contains(QLatin1String(key)), key);
                const QImage image = WQ::CUiResourceManager::instance()->image(QLatin1String(key), 0).toImage();
                QVERIFY2(image.height() > 16 && image.pixelColor(image.rect().center()) != QColor(255, 0, 255), key);
            }
        }
    }

    void tabsShowPicturesInsteadOfThePlainLook()
    {
        QTabBar* const bar = m_tabs->tabBar();
        const QImage plain = bar->grab().toImage();
        m_tabs->setTabHeaderImage(QStringLiteral("qav_img_tab_page_top_1"), QStringLiteral("qav_img_tab_page_top"),
                                  QStringLiteral("qav_img_tab_page_top_i_1"), QStringLiteral("qav_img_tab_page_top_i"));
        const QImage painted = bar->grab().toImage();
        QVERIFY(plain != painted);
        const QPoint other = bar->tabRect(1).center() - QPoint(0, 10);
        QTest::mouseMove(bar, other);
        QTRY_VERIFY(bar->grab().toImage().pixelColor(other) != painted.pixelColor(other));
    }

    void pagesGetAnAccessibleName()
    {
        QCOMPARE(m_tabs->tabWidget(0)->accessibleName(), QStringLiteral("黑白名单"));
        QVERIFY(!m_tabs->tabBar()->accessibleName().isEmpty());
    }

private:
    std::unique_ptr<test::RecordingPanel> m_panel;
    WQ::CStandardTabControl* m_tabs = nullptr;
};

TEST_WITH_WIDGETS(TabControlTest)
#include "tst_tab_control.moc"
