// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"

#include "exempt/CExemptCategoryWidget.h"
#include "support/TestProgram.h"

#include <QAV/adaptScreenSize.h>
#include <WQ/CSmallNormalButton.h>

#include <QAbstractItemView>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QTabBar>

using namespace risk_test;

/// The tab bar, painted with the mouse over its first tab and over its second one.
static QImage pictureOf(const WQ::CStandardTabControl& tabs)
{
    QTabBar* const bar = tabs.tabBar();
    bar->clearFocus();
    QImage both(bar->width(), 2 * bar->height(), QImage::Format_RGB32);
    both.fill(Qt::black);
    QPainter painter(&both);
    for (int tab = 0; tab < 2; ++tab) {
        QMouseEvent move(QEvent::MouseMove, bar->tabRect(tab).center(), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(bar, &move);
        painter.drawPixmap(0, tab * bar->height(), bar->grab());
    }
    return both;
}

/// What the risk settings dialog is made of.
class RiskLayoutTest : public RiskTest
{
    Q_OBJECT

private slots:
    void itLooksAsTheClientExpects()
    {
        auto& dialog = m_client->dialog();
        QCOMPARE(dialog.minimumSize(), QSize(500, 500));
        int width = 0;
        int height = 0;
        QAV::adaptScreenSize(1250, 600, 1300, 700, width, height);
        QCOMPARE(dialog.size(), QSize(width, height));

        const WQ::CStandardTabControl& tabs = m_client->tabs();
        QStringList texts;
        for (int i = 0; i < tabs.count(); ++i) {
            texts << tabs.tabText(i);
        }
        QCOMPARE(texts, QStringList({"黑白名单", "资产组合风控", "反向单交易设置", "对敲交易设置"}));
        QCOMPARE(tabs.currentIndex(), 0);

        const auto& save = dynamic_cast<WQ::CSmallNormalButton&>(m_client->button("保存设置"));
        QCOMPARE(save.id(), 0);
        QCOMPARE(save.size(), QSize(70, 26));
        QCOMPARE(save.parentWidget()->height(), 34);
        const QWidget& inner = *dialog.innerWidget();
        QCOMPARE(save.mapTo(&inner, save.rect().bottomRight()).x(), inner.width() - 10 - 1);
        QCOMPARE(tabs.geometry().topLeft(), QPoint(10, 10));
        QCOMPARE(save.parentWidget()->geometry().bottomRight(), inner.rect().bottomRight() - QPoint(10, 10));
        QCOMPARE(save.parentWidget()->layout()->contentsMargins(), QMargins(0, 10, 0, 0));
        QVERIFY(m_client->mask().isHidden());
    }

    void thePagesAreMadeWithTheirSizesAndIds()
    {
        // A page keeps its size until it is shown.
        QCOMPARE(m_client->assets().width(), 1500);
        for (const int page : {2, 3}) {
            QCOMPARE(m_client->tabs().tabWidget(page)->size(), QSize(1200, 130));
        }
        QCOMPARE(dynamic_cast<QAV::CExemptCategoryWidget&>(*m_client->tabs().tabWidget(2)).pageIndex(), 2);
        QCOMPARE(dynamic_cast<QAV::CExemptCategoryWidget&>(*m_client->tabs().tabWidget(3)).pageIndex(), 3);
        QCOMPARE(m_client->assets().findChild<WQ::CStandardSimpleTable*>()->tableId(), 1276);
        // It can be edited, and what is added is for the group.
        m_client->tabs().setCurrentIndex(1);
        QTest::mouseClick(m_client->assets().findChild<QPushButton*>("add"), Qt::LeftButton);
        std::vector<nvservice::CAssetsRC> limits;
        m_client->assets().getAssetsRCs(limits);
        QVERIFY(limits.at(0).scope == nvservice::EZVRCScopeType(1));
    }

    void newLimitsBelongToTheServerOfTheGroup()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        // The dialog has asked for the categories of the exempt pages, the limits for those of every institution and
        // type.
        QCOMPARE(m_client->shanghai->asked(), QStringList({"query 7131 7", "query 614 -1_-1", "query 614 -1_-1"}));
        m_client->tabs().setCurrentIndex(1);
        QTest::mouseClick(m_client->assets().findChild<QPushButton*>("add"), Qt::LeftButton);
        std::vector<nvservice::CAssetsRC> limits;
        m_client->assets().getAssetsRCs(limits);
        QCOMPARE(limits.at(1).serverName, std::string(Shanghai));
    }

    void theKeyboardReachesEveryControlOfEveryPage()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QApplication::setActiveWindow(&m_client->dialog());
        for (int page = 0; page < m_client->tabs().count(); ++page) {
            m_client->tabs().setCurrentIndex(page);
            m_client->tabs().tabBar()->setFocus();
            QCoreApplication::processEvents();
            QSet<const QWidget*> reached;
            for (int step = 0; step < 80; ++step) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
                reached << QApplication::focusWidget();
            }
            for (const QWidget* const control : m_client->dialog().findChildren<QWidget*>()) {
                const bool isForKeys =
                    control->isVisible() && control->isEnabled() && control->focusPolicy() & Qt::TabFocus;
                // A table answers for what is inside it, and the arrows of a tab bar are for the mouse.
                const bool isPart = qobject_cast<const QAbstractItemView*>(control->parentWidget()) ||
                                    qobject_cast<const QTabBar*>(control->parentWidget());
                QVERIFY2(!isForKeys || isPart || reached.contains(control) || reached.contains(control->focusProxy()),
                         qPrintable(QString("page %1: %2 %3")
                                        .arg(page)
                                        .arg(control->metaObject()->className(), control->accessibleName())));
            }
            QVERIFY(reached.contains(&m_client->button("保存设置")));
        }
    }

    void theTabsHaveTheImagesOfThePageHeader()
    {
        const WQ::CStandardTabControl& tabs = m_client->tabs();
        const auto pictureWith = [&](const QStringList& images) {
            WQ::CStandardTabControl other(nullptr);
            if (!images.isEmpty()) {
                other.setTabHeaderImage(images[0], images[1], images[2], images[3]);
            }
            for (int i = 0; i < tabs.count(); ++i) {
                other.addTabWidget(tabs.tabText(i), new QWidget);
            }
            other.resize(tabs.size());
            other.show();
            return pictureOf(other);
        };
        const QStringList images{"qav_img_tab_page_top_1", "qav_img_tab_page_top", "qav_img_tab_page_top_i_1",
                                 "qav_img_tab_page_top_i"};
        QVERIFY(pictureOf(tabs) == pictureWith(images));
        QVERIFY(pictureOf(tabs) != pictureWith({images[1], images[0], images[3], images[2]}));
        QVERIFY(pictureOf(tabs) != pictureWith({images[0], images[1], images[3], images[2]}));
        QVERIFY(pictureOf(tabs) != pictureWith({}));
    }

    void theTitleNamesTheGroupAsItIs()
    {
        m_client->open(makeGroup(7, "  量化%1 "));
        QCOMPARE(m_client->dialog().title(), QString("  量化%1 组 - 风控设置"));
    }
};

TEST_WITH_WIDGETS(RiskLayoutTest)
#include "tst_risk_layout.moc"
