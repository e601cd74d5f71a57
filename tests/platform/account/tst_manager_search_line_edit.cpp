// SPDX-License-Identifier: Apache-2.0
#include "InstitutionFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"

#include <QAbstractItemView>
#include <QScrollBar>

using namespace institution_test;

/// How the user chooses in the institution search edit.
class ManagerSearchLineEditTest : public QObject, private InstitutionFixture
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void typingCompletesByNamePinyinAndInitials_data()
    {
        const support::DataRows<QString, QStringList> row("typed", "expected");
        row("name", "招商", QStringList({"招商银行", "招商证券"}));
        row("pinyin", "zhaoshangy", QStringList("招商银行"));
        row("initials", "zszq", QStringList("招商证券"));
        row("inside", "jijin", QStringList("远山基金"));
        row("nothing", "xyz", {});
    }
    void typingCompletesByNamePinyinAndInitials()
    {
        QFETCH(QString, typed);
        QFETCH(QStringList, expected);
        load("SH");
        if (typed.front().unicode() < 0x80) {
            QTest::keyClicks(m_edit, typed);
        } else {
            typeChinese(m_edit, typed);
        }
        QCOMPARE(matches(), expected);
    }

    void onlyInstitutionsOfTheTagAreOffered()
    {
        load("");
        load("SZ");
        QTest::keyClick(m_edit, Qt::Key_Down);
        QCOMPARE(matches(), QStringList({"重庆信托", "同名机构"}));
    }

    void withoutATagTheServersAreNamed()
    {
        load("");
        QTest::keyClicks(m_edit, "tmjg");
        QCOMPARE(matches(), QStringList({"同名机构 (上海分系统)", "同名机构 (深圳分系统)"}));
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Enter);
        QString tag;
        QCOMPARE(m_edit->getCurrentManagerId(tag), 22);
        QCOMPARE(tag, QString("SZ"));
        QCOMPARE(m_edit->getText(), QString("同名机构"));
    }

    void theListIsWideEnoughForItsLines()
    {
        load("");
        m_edit->setFixedWidth(90);
        QTest::keyClicks(m_edit, "tmjg");
        const auto* const list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
        QVERIFY(list);
        QVERIFY(list->viewport()->width() >= list->fontMetrics().horizontalAdvance("同名机构 (上海分系统)"));
        QVERIFY(!list->horizontalScrollBar()->isVisible());

        m_edit->setFixedWidth(400);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        QTest::keyClick(m_edit, Qt::Key_Down);
        QVERIFY(QApplication::activePopupWidget());
        QCOMPARE(QApplication::activePopupWidget()->width(), 400);
    }

    void theWholeNameChoosesAndAnythingElseChoosesNone()
    {
        load("SH");
        typeChinese(m_edit, "招商银");
        QCOMPARE(chosen(), None);
        QCOMPARE(m_holder->changes, 0);
        typeChinese(m_edit, "行");
        QCOMPARE(chosen(), 12);
        QCOMPARE(m_holder->changes, 1);
        QTest::keyClick(m_edit, 'x');
        QCOMPARE(chosen(), None);
        QCOMPARE(m_holder->changes, 2);
        QTest::keyClick(m_edit, 'y');
        QCOMPARE(m_holder->changes, 2);
        QCOMPARE(m_holder->others, 0);
    }

    void aNameOfTwoServersChoosesThatOfTheTag()
    {
        load("");
        load("SZ");
        typeChinese(m_edit, "同名机构");
        QCOMPARE(chosen(), 22);
    }

    void enterTakesTheOnlyMatch()
    {
        load("SH");
        QTest::keyClicks(m_edit, "zs");
        QTest::keyClick(m_edit, Qt::Key_Enter);
        QCOMPARE(chosen(), None);
        QCOMPARE(m_edit->text(), QString());
        QTest::keyClicks(m_edit, "zszq");
        QTest::keyClick(m_edit, Qt::Key_Enter);
        QCOMPARE(chosen(), 13);
        QCOMPARE(m_edit->text(), QString("招商证券"));
        QCOMPARE(m_holder->changes, 1);
        QVERIFY(!QApplication::activePopupWidget());
    }

    void enterTakesThePickedMatch()
    {
        load("SH");
        QTest::keyClicks(m_edit, "zs");
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Enter);
        QCOMPARE(chosen(), 12);
        QCOMPARE(m_edit->text(), QString("招商银行"));
        QCOMPARE(m_holder->changes, 1);

        // Whoever opens the list again looks for another institution.
        QTest::keyClick(m_edit, Qt::Key_Down);
        QCOMPARE(matches().size(), 4);
    }

    void aClickOnAMatchChoosesIt()
    {
        load("SH");
        QTest::mouseClick(m_edit, Qt::LeftButton);
        auto* const view = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
        QVERIFY(view);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                          view->visualRect(view->model()->index(1, 0)).center());
        QCOMPARE(m_edit->text(), QString("远山基金"));
        QCOMPARE(chosen(), 11);
        QCOMPARE(m_holder->changes, 1);
    }

    void leavingTheEditSettlesTheText_data()
    {
        const support::DataRows<QString, QString, int> row("typed", "text", "id");
        row("the only match is taken", "ysjj", "远山基金", 11);
        row("of several none is taken", "zs", "", None);
        row("no match goes", "xyz", "", None);
        row("blanks go", "  ", "", None);
    }
    void leavingTheEditSettlesTheText()
    {
        QFETCH(QString, typed);
        QFETCH(QString, text);
        QFETCH(int, id);
        load("SH");
        QTest::keyClicks(m_edit, typed);
        QWidget* const list = QApplication::activePopupWidget();
        QTest::keyClick(list ? list : m_edit, Qt::Key_Tab);
        QVERIFY(m_other->hasFocus());
        QCOMPARE(m_edit->text(), text);
        QCOMPARE(chosen(), id);
        QVERIFY(!QApplication::activePopupWidget());
    }

    void aReadOnlyEditOffersNothing()
    {
        load("SH");
        m_edit->setReadOnly(true);
        QTest::keyClick(m_edit, Qt::Key_Down);
        QTest::keyClick(m_edit, Qt::Key_Up);
        QTest::mouseClick(m_edit, Qt::LeftButton);
        QVERIFY(!QApplication::activePopupWidget());
    }

    void theProgramsChoiceIsNoEvent()
    {
        load("SH");
        m_edit->setCurrentManagerId(12);
        QCOMPARE(chosen(), 12);
        QCOMPARE(m_edit->text(), QString("招商银行"));
        m_edit->setCurrentManagerId(None);
        QCOMPARE(chosen(), None);
        QCOMPARE(m_edit->text(), QString());
        QCOMPARE(m_holder->changes, 0);
    }

    void theHandlerOfTheChoiceMaySetTheTag()
    {
        load("");
        m_holder->onEvent = [&](int type) {
            if (type == WQ::ManagerSelectionChanged) {
                m_edit->setSystemTag("SZ");
            }
        };
        QTest::keyClicks(m_edit, "cqxt");
        QTest::keyClick(m_edit, Qt::Key_Enter);
        QTRY_COMPARE(m_holder->loads, 2);
        QCOMPARE(chosen(), 21);
        QCOMPARE(m_edit->text(), QString("重庆信托"));
        QCOMPARE(m_holder->changes, 1);
    }
};

TEST_WITH_WIDGETS(ManagerSearchLineEditTest)
#include "tst_manager_search_line_edit.moc"
