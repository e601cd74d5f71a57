// SPDX-License-Identifier: Apache-2.0
#include "Stages.h"
#include "TourTest.h"
#include "support/Paths.h"

#include <WQ/CStandardHpfTable.h>

#include <QAbstractItemView>
#include <QAction>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QShortcut>

#include <map>
#include <set>

using namespace tour;

/// The shortcuts that the manual lists are those that the client has, panel and dialogs included.
class TourShortcutsTest : public TourTest
{
    Q_OBJECT

    using Keys = std::set<QString>;

    /// By the heading above them.
    static std::map<QString, Keys> listed()
    {
        QFile file(support::sourceFile("docs/manual/index.md"));
        [&] { QVERIFY(file.open(QIODevice::ReadOnly)); }();
        std::map<QString, Keys> keys;
        QString heading;
        for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
            static const QRegularExpression row("^\\| ([^|]+?) \\| [^|]+ \\|$");
            if (line.startsWith("### ")) {
                heading = line.mid(4);
            } else if (const auto match = row.match(line); match.hasMatch() && match.captured(1) != "快捷键") {
                QString text = match.captured(1);
                if (text == "Alt+1 至 Alt+9") {
                    text = "Alt+1 或 Alt+2"; // there are two plug-ins
                }
                for (const QString& key : text.split(" 或 ")) {
                    keys[heading].insert(QKeySequence::fromString(key).toString());
                }
            }
        }
        return keys;
    }

    static void add(const QAction& action, Keys& keys)
    {
        for (const QKeySequence& key : action.shortcuts()) {
            keys.insert(key.toString());
        }
    }

    static Keys keysOf(const QList<QAction*>& actions)
    {
        Keys keys;
        for (const QAction* const action : actions) {
            add(*action, keys);
        }
        return keys;
    }

    static QStringList texts(const Keys& keys)
    {
        QStringList list;
        for (const QString& key : keys) {
            list << key;
        }
        return list;
    }

    static Keys minus(Keys from, const Keys& what)
    {
        for (const QString& key : what) {
            from.erase(key);
        }
        return from;
    }

private slots:
    void initTestCase() { startAsAdmin("9-shortcuts"); }

    void theManualListsTheShortcutsThatThereAre()
    {
        std::map<QString, Keys> manual = listed();
        QCOMPARE(manual.size(), std::size_t(5));
        workbench::CMainWindow& window = m_client->window();
        Keys menus;
        for (const QAction* const menu : window.menuBar()->actions()) {
            for (const QString& key : keysOf(menu->menu()->actions())) {
                menus.insert(key);
            }
        }
        QCOMPARE(texts(menus), texts(manual["主窗口"]));
        QCOMPARE(texts(keysOf(m_client->panel().actions())), texts(manual["账号组面板"]));
        QCOMPARE(texts(keysOf(m_client->table().view()->actions())), texts(manual["表格"]));

        // Whatever else there is belongs to the dialogs and what is in them.
        Keys inDialogs;
        for (const QAction* const action : window.findChildren<QAction*>()) {
            add(*action, inDialogs);
        }
        for (const QShortcut* const shortcut : window.findChildren<QShortcut*>()) {
            inDialogs.insert(shortcut->key().toString());
        }
        for (const char* heading : {"主窗口", "账号组面板", "表格"}) {
            inDialogs = minus(inDialogs, manual[heading]);
        }
        inDialogs.erase(QString());
        Keys inManual = manual["黑白名单"];
        inManual.insert(manual["对话框"].begin(), manual["对话框"].end());
        inManual.erase("Esc"); // QDialog's own
        QCOMPARE(texts(inDialogs), texts(inManual));
    }

    void toolTipsNameTheShortcuts()
    {
        for (const char* tip : {"添加账号组（Ctrl+N）", "立即刷新（F5）", "查询组名（Ctrl+K）"}) {
            const QList<QWidget*> widgets = m_client->panel().findChildren<QWidget*>();
            QVERIFY2(std::any_of(widgets.begin(), widgets.end(),
                                 [tip](const QWidget* widget) { return widget->toolTip() == tip; }),
                     tip);
        }
    }

    void ctrlNAddsAGroupAndCtrlSSavesIt()
    {
        m_client->searchEdit().setFocus();
        play([this] { QTest::keyClick(&m_client->searchEdit(), Qt::Key_N, Qt::ControlModifier); },
             {dialog("添加账号组", [](QWidget& window) {
                 // Without effect as long as the dialog loads; a group without a name is not saved.
                 const auto isRefused = [&window] {
                     QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
                     const QList<QLabel*> texts = window.findChildren<QLabel*>();
                     return std::any_of(texts.begin(), texts.end(),
                                        [](const QLabel* text) { return text->text().contains("不能为空"); });
                 };
                 QTRY_VERIFY(isRefused());
                 QVERIFY(window.isVisible());
                 QTest::keyClick(&window, Qt::Key_Escape);
             })});
    }
};

TEST_WITH_WIDGETS(TourShortcutsTest)
#include "tst_tour_shortcuts.moc"
