// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "PanelTable.h"
#include "support/TestProgram.h"

#include "workbench/CDockTitle.h"
#include "workbench/CManualDialog.h"
#include "workbench/CRequestStatus.h"

#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageHistory.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSmallNormalButton.h>
#include <nvservice/DataType.h>

/// What lies on the user's desk besides the panels: keys, counts, requests under way, messages, manual.
class DeskTest : public MainWindowFixture
{
    Q_OBJECT

    QAV::IkolmDockableWidget& startWithNoting()
    {
        start();
        QAV::IkolmDockableWidget& panel = *m_window->openPanel(Noting);
        [&] {
            QTRY_VERIFY(seenCalls(&panel).contains("onActive"));
            QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        }();
        return panel;
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        QWidget* const focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : m_window.get(), key, modifiers);
    }

    static QToolButton* titleButton(const QDockWidget& dock, const QString& name)
    {
        for (QToolButton* const button : dock.titleBarWidget()->findChildren<QToolButton*>()) {
            if (button->accessibleName() == name) {
                return button;
            }
        }
        qFatal("no such button");
    }

    QAction* menuAction(const QString& text) const
    {
        for (QAction* const action : m_window->findChildren<QAction*>()) {
            if (action->text() == text) {
                return action;
            }
        }
        return nullptr;
    }

private slots:
    void theCurrentPanelFloatsDocksAndClosesByKeys()
    {
        QAV::IkolmDockableWidget& panel = startWithNoting();
        QDockWidget* const dock = dockOf(*m_window, Noting);
        panel.setFocus();
        press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(dock->isFloating());
        QCoreApplication::processEvents();
        QApplication::setActiveWindow(dock); // as a window manager does
        QCOMPARE(QApplication::focusWidget(), &panel);
        press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(!dock->isFloating());
        QCOMPARE(m_window->focusWidget(), &panel);
        QApplication::setActiveWindow(m_window.get());
        press(Qt::Key_W, Qt::ControlModifier);
        QVERIFY(dock->isHidden());
        QCOMPARE(m_window->openPanels(), QStringList{Staying});
    }

    void aPanelThatIsOpenedHasTheKeyboardThoughItFloats()
    {
        QAV::IkolmDockableWidget& panel = startWithNoting();
        QDockWidget* const dock = dockOf(*m_window, Noting);
        dock->setFloating(true);
        m_window->activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), m_window.get());
        m_window->openPanel(Noting);
        QTRY_COMPARE(QApplication::activeWindow(), dock);
        QTRY_COMPARE(QApplication::focusWidget(), &panel);
        m_window->openPanel(Staying);
        QTRY_COMPARE(QApplication::activeWindow(), m_window.get());
    }

    void theTitleOfAPanelFloatsAndDocksIt()
    {
        startWithNoting();
        QDockWidget* const dock = dockOf(*m_window, Noting);
        QToolButton* const floats = titleButton(*dock, "浮动或停靠");
        QCOMPARE(floats->toolTip(), QString("浮动或停靠（Ctrl+Shift+F）"));
        QCOMPARE(titleButton(*dock, "关闭")->toolTip(), QString("关闭（Ctrl+W）"));
        QTest::mouseClick(floats, Qt::LeftButton);
        QVERIFY(dock->isFloating());
        QTest::mouseClick(floats, Qt::LeftButton);
        QVERIFY(!dock->isFloating());
    }

    void aNoticeLeavesTheTitleItsRoom()
    {
        startWithNoting();
        QDockWidget* const dock = dockOf(*m_window, Noting);
        auto* const title = static_cast<workbench::CDockTitle*>(dock->titleBarWidget());
        const auto* const notice = title->findChild<QToolButton*>("changeNotice");
        title->setNotice(QString(200, QChar(0x4e2d)));
        QVERIFY(notice->isVisible());
        title->layout()->activate();
        QVERIFY(notice->x() > title->fontMetrics().horizontalAdvance(dock->windowTitle()) + 10);
        title->setNotice({});
        QVERIFY(!notice->isVisible());
    }

    void ctrlKPutsTheCursorIntoTheSearch()
    {
        QAV::IkolmDockableWidget& panel = startWithNoting();
        auto* const edit = new QLineEdit("对冲", &panel);
        edit->show();
        panel.setFocus();
        press(Qt::Key_K, Qt::ControlModifier);
        QCOMPARE(m_window->focusWidget(), edit);
        QCOMPARE(edit->selectedText(), QString("对冲"));
    }

    void theKeysOfAPanelAreInTheMenuAndWorkInsideOfIt()
    {
        QAV::IkolmDockableWidget& panel = startWithNoting();
        auto* const add = new WQ::CSmallNormalButton(1, true, WQ::NormalButton, &panel);
        add->setText("添加");
        add->setKeys(QKeySequence::New, &panel);
        add->show();
        QCOMPARE(add->toolTip(), QString("添加（Ctrl+N）"));
        const QSignalSpy clicked(add, &QPushButton::clicked);
        m_window->findChild<QComboBox*>("serverBox")->setFocus();
        press(Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(clicked.count(), 0);
        panel.setFocus();
        press(Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(clicked.count(), 1);
        QVERIFY(panel.hasFocus());

        QMenu* const menu = m_window->menuBar()->actions()[2]->menu();
        const auto entries = [menu] {
            emit menu->aboutToShow();
            QStringList texts;
            for (const QAction* const action : menu->actions()) {
                texts << action->text();
            }
            return texts;
        };
        QCOMPARE(entries().first(), QString("添加"));
        QCOMPARE(entries().count("添加"), 1);
        m_window->openPanel(Staying);
        QTRY_VERIFY(!entries().contains("添加"));
    }

    void rowsAndHitsAreCounted()
    {
        QAV::IkolmDockableWidget& panel = startWithNoting();
        const PanelTable rows(panel);
        m_window->refreshCurrentPanel();
        const auto* const counts = m_window->findChild<QLabel*>("rowCounts");
        auto* const drop = m_window->findChild<QToolButton*>("dropFilter");
        QCOMPARE(counts->text(), QString("共0条"));
        rows.fill(12);
        QTRY_COMPARE(counts->text(), QString("共12条"));
        QVERIFY(!drop->isVisible());
        rows.table->filterColumn(0, {WQ::FilterContains, {"1"}});
        QCOMPARE(counts->text(), QString("筛选出3条，共12条"));
        QVERIFY(drop->isVisible());
        QTest::mouseClick(drop, Qt::LeftButton);
        QCOMPARE(counts->text(), QString("共12条"));
        QVERIFY(!drop->isVisible());
        rows.model->clear();
        QCOMPARE(counts->text(), QString("共0条"));
        m_window->openPanel(Staying);
        QTRY_COMPARE(counts->text(), QString());
    }

    void theTableInUseIsCounted()
    {
        QAV::IkolmDockableWidget& panel = startWithNoting();
        QApplication::setActiveWindow(m_window.get());
        const PanelTable first(panel);
        const PanelTable second(panel);
        first.fill(12);
        second.fill(34);
        m_window->refreshCurrentPanel();
        const auto* const counts = m_window->findChild<QLabel*>("rowCounts");
        auto* const drop = m_window->findChild<QToolButton*>("dropFilter");
        QTRY_COMPARE(counts->text(), QString("共12条"));
        second.table->view()->setFocus();
        QCOMPARE(counts->text(), QString("共34条"));
        second.table->filterColumn(0, {WQ::FilterContains, {"33"}});
        // The keyboard goes to the button that drops the filter, which is that of the same table.
        drop->setFocus();
        QCOMPARE(counts->text(), QString("筛选出1条，共34条"));
        QTest::keyClick(drop, Qt::Key_Space);
        QCOMPARE(counts->text(), QString("共34条"));
        first.table->view()->setFocus();
        QCOMPARE(counts->text(), QString("共12条"));
        // Another page comes to the front.
        first.table->hide();
        QTRY_COMPARE(counts->text(), QString("共34条"));
        first.table->show();
        second.table->hide();
        QTRY_COMPARE(counts->text(), QString("共12条"));
        // The focus has nothing to do with it.
        m_window->findChild<QComboBox*>("serverBox")->setFocus();
        QCoreApplication::processEvents();
        second.table->show();
        first.table->hide();
        QTRY_COMPARE(counts->text(), QString("共34条"));
    }

    void longRequestsAreShownWithTheirAgeAndCanBeCancelled()
    {
        startWithNoting();
        auto* const requests = m_window->findChild<QToolButton*>("requests");
        QVERIFY(!requests->isVisible());
        const auto query = boost::make_shared<nvservice::CKolmQueryDataReq>();
        query->dataType = nvservice::DataType::AccountGroup;
        std::atomic<int> cancelled{0};
        for (int i = 0; i < 2; ++i) {
            support::centre().getClientByName("B")->queryData_async(
                query, [&](const utils::NVError& error, const auto&, int, const auto&) {
                    cancelled += error.code() == utils::EErrorCode::Cancelled ? 1 : 0;
                });
        }
        QTRY_VERIFY(requests->isVisible());
        const QRegularExpression text("^请求2个，已等待[1-9]\\d*秒$");
        QVERIFY2(text.match(requests->text()).hasMatch(), qPrintable(requests->text()));
        QToolButton plain(requests->parentWidget());
        plain.setAutoRaise(true);
        plain.setText(requests->text());
        plain.resize(requests->size());
        QCOMPARE(requests->grab().toImage(), plain.grab().toImage()); // no arrow covers the text
        emit requests->menu()->aboutToShow();
        emit requests->menu()->aboutToShow(); // each time anew
        const QList<QAction*> entries = requests->menu()->actions();
        QCOMPARE(entries.size(), 4);
        QVERIFY2(entries[0]->text().startsWith("取消：B 查询账号组（"), qPrintable(entries[0]->text()));
        entries[0]->trigger();
        QTRY_COMPARE(cancelled.load(), 1);
        QTRY_VERIFY(requests->text().startsWith("请求1个"));
        entries[3]->trigger();
        QTRY_COMPARE(cancelled.load(), 2);
        QTRY_VERIFY(!requests->isVisible());
    }

    void eachRequestSaysWhatItIsAbout_data()
    {
        const support::DataRows<int, QString> row("dataType", "text");
        row("history", nvservice::DataType::GroupHistory, "查询账号组历史");
        row("state", nvservice::DataType::GroupState, "查询账号组状态");
        row("audit", nvservice::DataType::Audit, "查询审计记录");
        row("check", nvservice::DataType::Finding, "查询一致性检查结果");
        row("restore", nvservice::DataType::GroupRestore, "查询账号组恢复");
    }
    void eachRequestSaysWhatItIsAbout()
    {
        QFETCH(int, dataType);
        QFETCH(QString, text);
        startWithNoting();
        const auto query = boost::make_shared<nvservice::CKolmQueryDataReq>();
        query->dataType = dataType;
        support::centre().getClientByName("B")->queryData_async(query, {});
        QMenu& requests = *m_window->findChild<QToolButton*>("requests")->menu();
        emit requests.aboutToShow();
        const QString entry = requests.actions().value(0)->text();
        QVERIFY2(entry.startsWith("取消：B " + text + "（"), qPrintable(entry));
    }

    void theRestAfterRequestsIsToldOnce()
    {
        startWithNoting();
        QSignalSpy rest(m_window->findChild<workbench::CRequestStatus*>(), &workbench::CRequestStatus::sigAtRest);
        QTRY_COMPARE(rest.size(), 1); // after the log-in
        const auto query = boost::make_shared<nvservice::CKolmQueryDataReq>();
        query->dataType = nvservice::DataType::AccountGroup;
        support::centre().getClientByName("B")->queryData_async(query, {});
        QTest::qWait(3000);
        QCOMPARE(rest.size(), 1);
        support::centre().cancelRequests();
        QTRY_COMPARE(rest.size(), 2);
        QTest::qWait(1500);
        QCOMPARE(rest.size(), 2);
    }

    void theLatestMessagesAreListedAndCopied()
    {
        QAV::IkolmDockableWidget& panel = startWithNoting();
        m_boxes->expectMessage(QMessageBox::Information, "提示", "保存成功");
        WQ::CMessageBox::information(&panel, "提示", "保存成功");
        WQ::CMessageTip::showTip(&panel, Qt::AlignBottom, "已删除1条", 0, WQ::MessageInformation, 0);
        m_window->statusBar()->showMessage("状态");
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            const auto* const list = dialog.findChild<QListWidget*>("messageList");
            QCOMPARE(list->count(), 3);
            QVERIFY(list->item(0)->text().endsWith("  状态"));
            QVERIFY(list->item(1)->text().endsWith("  已删除1条"));
            QVERIFY(list->item(2)->text().endsWith("  提示：保存成功"));
            QApplication::setActiveWindow(&dialog);
            QTest::keyClick(list->viewport(), Qt::Key_C, Qt::ControlModifier);
            QCOMPARE(QApplication::clipboard()->text().count('\n'), 2);
            const QList<WQ::CMediumNormalButton*> buttons = dialog.findChildren<WQ::CMediumNormalButton*>();
            const auto button = [&buttons](const QString& text) {
                return *std::find_if(buttons.begin(), buttons.end(),
                                     [&text](const auto* candidate) { return candidate->text() == text; });
            };
            QVERIFY(button("复制")->x() < button("关闭")->x());
            for (const QWidget* const next :
                 {static_cast<QWidget*>(button("复制")), static_cast<QWidget*>(button("关闭"))}) {
                QTest::keyClick(&dialog, Qt::Key_Tab);
                QCOMPARE(dialog.focusWidget(), next);
            }
            WQ::CMessageHistory::instance().add("提示", "稍后");
            QCOMPARE(list->count(), 4);
            QVERIFY(list->item(0)->text().endsWith("  提示：稍后"));
            list->item(2)->setSelected(true);
            QTest::keyClick(list->viewport(), Qt::Key_C, Qt::ControlModifier);
            QCOMPARE(QApplication::clipboard()->text(), list->item(2)->text());
            dialog.done(0);
        });
        menuAction("最近的消息(&R)…")->trigger();
        QVERIFY(m_boxes->verify());
    }

    void theNextUserSeesNoMessagesOfTheLast()
    {
        start();
        WQ::CMessageHistory::instance().add("提示", "秘密");
        m_window.reset();
        QVERIFY(WQ::CMessageHistory::instance().messages().isEmpty());
        for (int i = 0; i < WQ::CMessageHistory::Capacity + 5; ++i) {
            WQ::CMessageHistory::instance().add({}, QString::number(i));
        }
        QCOMPARE(WQ::CMessageHistory::instance().messages().size(), WQ::CMessageHistory::Capacity);
        QCOMPARE(WQ::CMessageHistory::instance().messages().first().text, QString("5"));
        WQ::CMessageHistory::instance().clear();
    }

    void f1OpensAManualThatCanBeUsedAboveADialog()
    {
        QAV::IkolmDockableWidget& panel = startWithNoting();
        press(Qt::Key_F1, Qt::NoModifier); // the one of the main window is blocked while a dialog is open
        QDialog dialog(&panel);
        auto* const edit = new QLineEdit(&dialog);
        dialog.setModal(true);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_F1, Qt::ShiftModifier);
        QVERIFY(!dialog.findChild<workbench::CManualDialog*>());
        QTest::keyClick(edit, Qt::Key_F1);
        auto* const manual = dialog.findChild<workbench::CManualDialog*>();
        QVERIFY(manual && manual->isVisible());
        QTest::qWait(0);
        auto* const pages = manual->findChild<QListWidget*>("manualPages");
        QTest::mouseClick(pages->viewport(), Qt::LeftButton, Qt::NoModifier,
                          pages->visualItemRect(pages->item(2)).center());
        QCOMPARE(pages->currentRow(), 2); // no dialog blocks it
        QTest::keyClick(manual, Qt::Key_F1);
        QCOMPARE(m_window->findChildren<workbench::CManualDialog*>().size(), 1);
        QVERIFY(dialog.isVisible());
        manual->close();
        dialog.hide();
        QApplication::setActiveWindow(m_window.get());
        panel.setFocus();
        press(Qt::Key_F1, Qt::NoModifier);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const auto manuals = m_window->findChildren<workbench::CManualDialog*>();
        QCOMPARE(manuals.size(), 1);
        QCOMPARE(manuals.first()->parentWidget(), m_window.get());
        QVERIFY(manuals.first()->isVisible());
    }

    void f1OpensTheManualAndEveryPageCanBeRead()
    {
        startWithNoting();
        press(Qt::Key_F1, Qt::NoModifier);
        auto* const manual = m_window->findChild<workbench::CManualDialog*>();
        QVERIFY(manual && manual->isVisible() && !manual->isModal());
        auto* const pages = manual->findChild<QListWidget*>("manualPages");
        auto* const page = manual->findChild<QTextBrowser*>("manualPage");
        QVERIFY(page->toPlainText().contains("Ctrl+S"));
        QVERIFY(pages->count() >= 6);
        QStringList files;
        for (int row = 0; row < pages->count(); ++row) {
            pages->setCurrentRow(row);
            files << page->source().fileName();
            QVERIFY2(page->toPlainText().size() > 100, qPrintable(files.last()));
            const QTextDocument* const text = page->document();
            for (QTextBlock block = text->begin(); block.isValid(); block = block.next()) {
                for (auto part = block.begin(); !part.atEnd(); ++part) {
                    const QTextImageFormat picture = part.fragment().charFormat().toImageFormat();
                    if (picture.isValid()) {
                        const QString file = QDir(workbench::CManualDialog::folder()).filePath(picture.name());
                        QVERIFY2(!QImage(file).isNull(), qPrintable(files.last() + ": " + picture.name()));
                    }
                }
            }
        }
        files.sort();
        QCOMPARE(files, QDir(workbench::CManualDialog::folder()).entryList({"*.md"}, QDir::Files, QDir::Name));
        pages->setCurrentRow(0);
        const auto linkColour = [page] {
            for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
                for (auto part = block.begin(); !part.atEnd(); ++part) {
                    if (part.fragment().charFormat().isAnchor()) {
                        return part.fragment().charFormat().foreground().color();
                    }
                }
            }
            return QColor();
        };
        const QColor dark = linkColour();
        m_window->switchTheme("light");
        QTRY_COMPARE(linkColour(), QApplication::palette().color(QPalette::Link));
        QVERIFY(linkColour() != dark);
        m_window->switchTheme("dark");
        // A link leads to its page, in the list as well.
        page->setSource(QUrl("groups.md"));
        QCOMPARE(pages->currentItem()->text(), QString("账号组"));
        QTest::keyClick(manual, Qt::Key_Escape);
        QVERIFY(!manual->isVisible());
        m_window->showManual();
        QCOMPARE(m_window->findChildren<workbench::CManualDialog*>().size(), 1);
    }
};

TEST_WITH_WIDGETS(DeskTest)
#include "tst_workbench_desk.moc"
