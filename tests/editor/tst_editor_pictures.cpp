// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"
#include "support/wq/ThemePicture.h"

#include <WQ/CMessageBox.h>
#include <WQ/CMessageTip.h>

#include <QTimer>

using namespace editor_test;

/// What the dialogs look like, in every theme: no picture is empty, and no colour or image of the theme is missing.
/// With QAV_PICTURE_DIR set, the pictures are kept there.
class EditorPicturesTest : public EditorTest
{
    Q_OBJECT

private slots:
    void everyStateIsPaintedWithTheTheme_data() { support::addThemes(); }

    void everyStateIsPaintedWithTheTheme()
    {
        QFETCH(QString, theme);
        support::useTheme(theme);

        m_client->addShanghai().held = {nvservice::DataType::Account};
        m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) {
            support::takePicture(dialog, "single-server-loading");
            m_client->shanghai.held.clear();
            m_client->shanghai.release(nvservice::DataType::Account);
            m_client->waitUntilLoaded();
            support::takePicture(dialog, "single-server-add");
            m_client->click("关闭");
        });
        m_client->dialog.reset();
        m_client->addShenzhen();
        addMode();
        editMode();
        errors();
        messages();
        picker();
        pickerError();
        m_client->dialog.reset();
        m_client->logIn(102, ShanghaiTag);
        m_client->editLoaded(makeGroup("招行专户", ShanghaiTag, 102, {makeAccount(1, "10001", ShanghaiTag)}),
                             "上海分系统", [&](WQ::CBaseDialog& dialog) {
                                 support::takePicture(dialog, "bound-user");
                                 m_client->click("关闭");
                             });
    }

private:
    /// Of the message box that `action` brings up; Esc answers it.
    void takeBox(const QString& name, QWidget& dialog, const std::function<void()>& action)
    {
        WQ::IMessagePresenter* const scripted = WQ::CMessageBox::setPresenter(nullptr);
        bool taken = false;
        QTimer::singleShot(0, &dialog, [&] {
            QWidget* const box = QApplication::activeModalWidget();
            QVERIFY2(box && box != &dialog, qPrintable(name));
            support::takePicture(dialog, name, box);
            taken = true;
            QTest::keyClick(box, Qt::Key_Escape);
        });
        action();
        WQ::CMessageBox::setPresenter(scripted);
        QVERIFY2(taken, qPrintable(name));
    }

    void addMode()
    {
        m_client->addLoaded("", [&](WQ::CBaseDialog& dialog) {
            QApplication::setActiveWindow(&dialog);
            support::takePicture(dialog, "add");
            m_client->institutionEdit()->setFocus();
            QTest::keyClick(m_client->institutionEdit(), Qt::Key_Down);
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
            support::takePicture(dialog, "add-institutions");
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
            m_client->click("关闭");
        });
    }

    void editMode()
    {
        AccountList accounts;
        for (int i = 0; i < 40; ++i) {
            accounts.push_back(makeAccount(i % 3 == 0 ? 1 : 2, "8801" + std::to_string(1000 + i), ShanghaiTag,
                                           i % 4 == 1 ? "A" + std::to_string(i) : ""));
        }
        QAV::ProductMap products;
        for (std::size_t i = 0; i < accounts.size(); i += 2) {
            products[accounts[i]->getKey()] = makeProduct("远山稳健成长" + std::to_string(i) + "号集合资产管理计划");
        }
        m_client->createDialog().setAccountProductMap(products);
        m_client->dialog->setServerName("");
        m_client->editLoaded(makeGroup("稳健一组", ShanghaiTag, 101, accounts), "上海分系统",
                             [&](WQ::CBaseDialog& dialog) {
                                 QApplication::setActiveWindow(&dialog);
                                 support::takePicture(dialog, "edit");
                                 dialog.resize(900, 700);
                                 support::takePicture(dialog, "edit-large");
                                 m_client->click("关闭");
                             });
        m_client->dialog.reset();
    }

    void errors()
    {
        m_client->addLoaded("", [&](WQ::CBaseDialog& dialog) {
            m_client->click("保存");
            QTRY_VERIFY(WQ::CMessageTip::tipOf(m_client->institutionEdit()));
            // The tip fades in; the picture is taken when it stands still.
            QImage before;
            const auto standsStill = [&] {
                const QImage now = dialog.grab().toImage();
                return now == std::exchange(before, now);
            };
            QTRY_VERIFY(standsStill());
            support::takePicture(dialog, "errors");
            m_client->click("关闭");
        });
    }

    void messages()
    {
        m_client->dialog.reset();
        const auto group =
            makeGroup("稳健一组", ShanghaiTag, 101,
                      {makeAccount(1, "880110001", ShanghaiTag), makeAccount(2, "880120002", ShenzhenTag)});
        m_client->editLoaded(group, "上海分系统", [&](WQ::CBaseDialog& dialog) {
            takeBox("other-server", dialog, [&] { m_client->click("保存"); });
            QWidget* const button = m_client->table()->itemWidget(m_client->table()->rowID(0), 4);
            QTRY_VERIFY(button->isVisible());
            takeBox("delete-account", dialog, [&] { QTest::mouseClick(button, Qt::LeftButton); });
            // The reply that brings the message is one of a server that is down.
            takeBox("server-down", dialog, [&] {
                emit m_client->dialog->sigQuaryAccountInfo(
                    {}, false, QStringLiteral("分系统“深圳分系统”未应答：超过 30 秒；分系统“北京分系统”：数据库忙"));
            });
            m_client->click("关闭");
        });
    }

    void picker()
    {
        std::vector<nvservice::IDataPtr> many;
        for (int i = 0; i < 300; ++i) {
            many.push_back(makeWrapper(makeAccount(2, std::to_string(880100000 + i), ShanghaiTag, i % 5 ? "" : "A")));
        }
        m_client->shanghai.replies[nvservice::DataType::Account] = support::replyWith(many);
        m_client->lookAtNew("上海分系统", [&] {
            m_client->boxes.expectDialog([&](WQ::CBaseDialog& shown) {
                auto* const box = shown.findChild<QAV::CUserCombobox*>();
                support::takePicture(shown, "picker");
                QTest::mouseClick(box, Qt::LeftButton);
                QWidget* const list = box->findChild<QWidget*>("search")->window();
                support::takePicture(shown, "picker-open");
                QTest::keyClicks(box->findChild<QLineEdit*>("search"), "8801 wgl");
                clickButton(*list, "全选");
                support::takePicture(shown, "picker-search");
                QTest::keyClick(list, Qt::Key_Escape);
                support::takePicture(shown, "picker-checked");
                clickButton(shown, "取消");
            });
            m_client->click("添加账号");
        });
    }

    void pickerError()
    {
        QAV::CSelectAccountDialog picker(nullptr);
        const AccountList both{makeAccount(2, "880110001", ShanghaiTag),
                               makeAccount(2, "880110001", ShanghaiTag, "A01")};
        picker.setAccounts({makeWrapper(both[0]), makeWrapper(both[1])}, both);
        picker.show();
        takeBox("picker-units", picker, [&] { clickButton(picker, "确定"); });
    }
};

TEST_WITH_WIDGETS(EditorPicturesTest)
#include "tst_editor_pictures.moc"
