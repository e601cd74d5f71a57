// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "support/UnexpectedLog.h"

#include <QAV/CUserCombobox.h>

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QAccessible>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

#include <memory>

/// The drop-down of many checks.
class UserComboboxTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_log = std::make_unique<support::UnexpectedLog>();
        m_window = std::make_unique<QWidget>();
        m_box = new QAV::CUserCombobox(1, QStringLiteral("账号"), m_window.get());
        m_box->setFixedWidth(240);
        m_box->addItems({{"k1", "1001(远山一号)"}, {"k2", "1002(招商银行)"}, {"k3", "2003(远山二号)"}});
        m_window->resize(300, 100);
        m_window->show();
        QApplication::setActiveWindow(m_window.get());
        m_box->setFocus();
    }

    void cleanup()
    {
        m_window.reset();
        m_log.reset();
    }

    void theClosedBoxShowsHowManyAreChecked()
    {
        QCOMPARE(m_box->currentText(), QString("请选择账号"));
        m_box->setCheckItems({"k1", "k3"});
        QCOMPARE(m_box->currentText(), QString("已选 2 个账号"));
        QCOMPARE(m_box->checkedCount(), 2);
        m_box->setCheckItems({});
        QCOMPARE(m_box->currentText(), QString("请选择账号"));
    }

    void checkingReplacesTheChecksAndIgnoresUnknownKeys()
    {
        m_box->setCheckItems({"k1"});
        QSignalSpy changes(m_box, &QAV::CUserCombobox::sigCheckedChanged);
        m_box->setCheckItems({"k2", "unknown", ""});
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k2"}));
        QCOMPARE(changes.size(), 1);
    }

    void addingKeepsChecksAndReplacesTexts()
    {
        m_box->setCheckItems({"k1", "k2"});
        m_box->addItems({{"k0", "neu"}, {"k2", "1002(新名)"}, {"k9", "letzt"}});
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k1", "k2"}));
        m_box->showPopup();
        QCOMPARE(shown(), QStringList({"neu", "1001(远山一号)", "1002(新名)", "2003(远山二号)", "letzt"}));
    }

    void clearingRemovesItemsAndChecks()
    {
        m_box->setCheckItems({"k1"});
        m_box->clear();
        QCOMPARE(m_box->itemCount(), 0);
        QCOMPARE(m_box->checkKeys(), QSet<QString>());
        QCOMPARE(m_box->currentText(), QString("请选择账号"));
        m_box->addItems({{"k1", "1001"}});
        QCOMPARE(m_box->checkKeys(), QSet<QString>());
    }

    void aClickOpensAndAClickOnARowChecksIt()
    {
        QTest::mouseClick(m_box, Qt::LeftButton);
        QVERIFY(m_box->isPopupOpen());
        clickRow(1);
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k2"}));
        QCOMPARE(items()->model()->index(1, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        clickRow(1);
        QCOMPARE(m_box->checkKeys(), QSet<QString>());
        QVERIFY(m_box->isPopupOpen());
    }

    void keysOpenTheListAndMoveInIt_data()
    {
        const support::DataRows<int, int> row("key", "modifiers");
        row("space", int(Qt::Key_Space), int(Qt::NoModifier));
        row("F4", int(Qt::Key_F4), int(Qt::NoModifier));
        row("Alt+Down", int(Qt::Key_Down), int(Qt::AltModifier));
    }
    void keysOpenTheListAndMoveInIt()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QTest::keyClick(m_box, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QVERIFY(m_box->isPopupOpen());
        QTest::keyClick(search(), Qt::Key_Down);
        QTest::keyClick(search(), Qt::Key_Enter);
        QTest::keyClick(search(), Qt::Key_Down);
        QTest::keyClick(search(), Qt::Key_Return);
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k2", "k3"}));
        items()->setFocus();
        QTest::keyClick(items(), Qt::Key_Space);
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k2"}));
        QTest::keyClick(items(), Qt::Key_F4);
        QVERIFY(!m_box->isPopupOpen());
    }

    void aCharacterOpensTheListAndBeginsTheSearch()
    {
        QTest::keyClick(m_box, 'y');
        QVERIFY(m_box->isPopupOpen());
        QCOMPARE(search()->text(), QString("y"));
        QTest::keyClicks(search(), "s2");
        QCOMPARE(shown(), QStringList());
        search()->setText(QString());
        QTest::keyClicks(search(), "yseh");
        QCOMPARE(shown(), QStringList("2003(远山二号)"));
    }

    void theButtonsConcernWhatTheSearchShows()
    {
        m_box->setCheckItems({"k2"});
        m_box->showPopup();
        QTest::keyClicks(search(), "yuanshan");
        QSignalSpy changes(m_box, &QAV::CUserCombobox::sigCheckedChanged);
        clickButton("全选");
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k1", "k2", "k3"}));
        clickRow(0);
        clickButton("反选");
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k1", "k2"}));
        clickButton("全不选");
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k2"}));
        QCOMPARE(changes.size(), 4);
        QCOMPARE(m_box->currentText(), QString("已选 1 个账号"));
    }

    void aNewOpeningStartsWithoutASearch()
    {
        m_box->showPopup();
        QTest::keyClicks(search(), "1002");
        QCOMPARE(shown().size(), 1);
        QTest::keyClick(search(), Qt::Key_Escape);
        m_box->showPopup();
        QCOMPARE(search()->text(), QString());
        QCOMPARE(shown().size(), 3);
    }

    void aSearchWhileTheKeysAreBeingPreparedFindsEverything()
    {
        QMap<QString, QString> items;
        for (int i = 0; i < 20000; ++i) {
            items.insert(QString::number(i), QStringLiteral("%1(远山)").arg(i));
        }
        m_box->clear();
        m_box->addItems(items);
        m_box->showPopup();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 0);
        QTest::keyClicks(search(), "ys");
        QCOMPARE(shown().size(), 20000);
    }

    void escapeClosesAndKeepsTheChecks()
    {
        m_box->showPopup();
        clickRow(0);
        QTest::keyClick(search(), Qt::Key_Escape);
        QVERIFY(!m_box->isPopupOpen());
        QCOMPARE(m_box->checkKeys(), QSet<QString>({"k1"}));
    }

    void arrowsAndWheelLeaveTheClosedBoxAlone()
    {
        QSignalSpy changes(m_box, &QAV::CUserCombobox::sigCheckedChanged);
        for (const int key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Shift}) {
            QTest::keyClick(m_box, Qt::Key(key));
        }
        QVERIFY(!m_box->isPopupOpen());
        QCOMPARE(m_box->currentIndex(), 0);
        QCOMPARE(changes.size(), 0);
    }

    void aHundredThousandItemsAreCheckedAtOnce()
    {
        QMap<QString, QString> items;
        for (int i = 0; i < 100000; ++i) {
            items.insert(QStringLiteral("%1").arg(i, 6, 10, QLatin1Char('0')), QStringLiteral("账号%1").arg(i));
        }
        m_box->clear();
        m_box->addItems(items);
        m_box->showPopup();
        QSignalSpy changes(m_box, &QAV::CUserCombobox::sigCheckedChanged);
        clickButton("全选");
        QCOMPARE(m_box->checkedCount(), 100000);
        QCOMPARE(changes.size(), 1);
        QTest::keyClicks(search(), "zh9999");
        clickButton("反选");
        QCOMPARE(m_box->checkedCount(), 100000 - 11);
        // Whatever the number of items, there are no widgets for them.
        QVERIFY(m_box->findChildren<QWidget*>().size() < 40);
    }

    void theModelKeepsTheRulesOfItemModels()
    {
        m_box->showPopup();
        const QAbstractItemModelTester tester(items()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QTest::keyClicks(search(), "yuan");
        clickButton("全选");
        m_box->addItems({{"k7", "7"}});
        m_box->setCheckItems({"k7"});
        m_box->clear();
        QCOMPARE(tester.model()->rowCount(), 0);
    }

    void assistiveTechnologyReadsTheCount()
    {
        m_box->setCheckItems({"k1"});
        QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(m_box);
        QVERIFY(interface);
        QCOMPARE(interface->text(QAccessible::Value), QString("已选 1 个账号"));
    }

    void itMayBeDestroyedWhileTheListIsOpen()
    {
        m_box->showPopup();
        m_window.reset();
        QCoreApplication::processEvents();
        QVERIFY(!QApplication::activePopupWidget());
    }

private:
    QLineEdit* search() const { return m_box->findChild<QLineEdit*>("search"); }
    QAbstractItemView* items() const { return m_box->findChild<QAbstractItemView*>("items"); }

    QStringList shown() const
    {
        QStringList texts;
        for (int row = 0; row < items()->model()->rowCount(); ++row) {
            texts << items()->model()->index(row, 0).data().toString();
        }
        return texts;
    }

    void clickButton(const QString& text) const
    {
        for (QPushButton* const button : m_box->findChildren<QPushButton*>()) {
            if (button->text() == text) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        QFAIL(qPrintable(text));
    }

    void clickRow(int row) const
    {
        QTest::mouseClick(items()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          items()->visualRect(items()->model()->index(row, 0)).center());
    }

    std::unique_ptr<support::UnexpectedLog> m_log;
    std::unique_ptr<QWidget> m_window;
    QAV::CUserCombobox* m_box = nullptr;
};

TEST_WITH_WIDGETS(UserComboboxTest)
#include "tst_user_combobox.moc"
