// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "support/TestProgram.h"

#include "workbench/CLogInDialog.h"
#include "workbench/COpeningDialog.h"
#include "workbench/CPluginDialog.h"
#include "workbench/Texts.h"

#include <QAV/CAccountRcEmailWidget.h>
#include <QAV/CAccountStockTradeLimit.h>
#include <QAV/CAssetsProportionWidget.h>
#include <QAV/CManagerSearchLineEdit.h>
#include <QAV/CUserCombobox.h>
#include <utils/Translation.h>

namespace
{

/// Every text of a widget that a user can read or hear, with the name of where it is.
QStringList textsOf(const QObject& object)
{
    QStringList texts;
    const QMetaObject& type = *object.metaObject();
    for (int i = 0; i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        if (qstrcmp(property.name(), "objectName") != 0 && qstrcmp(property.name(), "styleSheet") != 0 &&
            (property.type() == QVariant::String || property.type() == QVariant::StringList)) {
            for (const QString& text : property.read(&object).toStringList()) {
                texts << QString("%1.%2: %3").arg(type.className(), property.name(), text);
            }
        }
    }
    return texts;
}

QStringList textsOf(const QAbstractItemModel& model)
{
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column) {
        for (const int role : {Qt::DisplayRole, Qt::ToolTipRole}) {
            texts << "header: " + model.headerData(column, Qt::Horizontal, role).toString();
            for (int row = 0; row < qMin(model.rowCount(), 50); ++row) {
                texts << "cell: " + model.index(row, column).data(role).toString();
            }
        }
    }
    return texts;
}

/// What plug-ins and records say is theirs.
const QStringList OfOthers{"记录面板", "固定面板", "异常面板", "数据文件缺失", "风控员"};

bool isChinese(QString text)
{
    static const QRegularExpression han("[\\x{3000}-\\x{303f}\\x{3400}-\\x{9fff}\\x{ff00}-\\x{ffef}]");
    for (const QString& word : OfOthers) {
        text.remove(word);
    }
    return text.contains(han);
}

/// The Chinese texts of all widgets that there are.
QStringList chineseTexts(int& seen)
{
    QStringList found;
    const auto look = [&](const QStringList& texts) {
        seen += texts.size();
        std::copy_if(texts.begin(), texts.end(), std::back_inserter(found), isChinese);
    };
    for (const QWidget* const widget : QApplication::allWidgets()) {
        look(textsOf(*widget));
        for (const QAction* const action : widget->actions()) {
            look(textsOf(*action));
        }
        if (const auto* view = qobject_cast<const QAbstractItemView*>(widget); view && view->model()) {
            look(textsOf(*view->model()));
        }
        if (const auto* box = qobject_cast<const QComboBox*>(widget)) {
            look(textsOf(*box->model()));
        }
        if (const auto* tabs = qobject_cast<const QTabBar*>(widget)) {
            for (int i = 0; i < tabs->count(); ++i) {
                look({tabs->tabText(i), tabs->tabToolTip(i)});
            }
        }
    }
    found.removeDuplicates();
    return found;
}

} // namespace

/// The client with English chosen.
class WorkbenchEnglishTest : public MainWindowFixture
{
    Q_OBJECT

public:
    WorkbenchEnglishTest()
    {
        workbench::registerTexts();
        utils::setLanguage(utils::ELanguage::English);
    }

private:
    void startEnglish()
    {
        m_log->allow("03-throwing.plugin.json: The panel could not be created");
        start();
    }

    static void requireEnglish(int least)
    {
        QCoreApplication::processEvents();
        int seen = 0;
        const QStringList found = chineseTexts(seen);
        QVERIFY2(found.isEmpty(), qPrintable('\n' + found.join('\n')));
        QVERIFY2(seen >= least, qPrintable(QString::number(seen)));
    }

private slots:
    void mainWindowIsEnglish()
    {
        startEnglish();
        for (QMenu* const menu : m_window->menuBar()->findChildren<QMenu*>()) {
            emit menu->aboutToShow();
        }
        auto* const language = m_window->findChild<QAction*>("language.zh");
        QVERIFY(language);
        QCOMPARE(language->text(), QString("中文"));
        language->setText({}); // the only Chinese word
        requireEnglish(500);
        QCOMPARE(m_window->windowTitle(), QString("Risk Administration Client"));
    }

    void dialogsAreEnglish()
    {
        startEnglish();
        m_window->findChild<QAction*>("language.zh")->setText({});
        workbench::CLogInDialog logIn(*m_session, *m_settings, nullptr);
        logIn.show();
        workbench::CPluginDialog plugins(*m_catalogue, nullptr);
        plugins.show();
        workbench::COpeningDialog opening;
        opening.show();
        requireEnglish(700);
    }

    void panesOfThePlatformAreEnglish()
    {
        QAV::CAccountStockTradeLimit lists(QAV::EStockLimitTableType(0), nvservice::EZvTraderType::Stock, nullptr);
        QAV::CAssetsProportionWidget limits(1276, false, nvservice::EZVRCScopeType::AccountGroup, -1, nullptr);
        QAV::CAccountRcEmailWidget mails(nullptr);
        QAV::CManagerSearchLineEdit institutions(1, nullptr);
        QAV::CUserCombobox accounts(1, "account", nullptr);
        for (QWidget* const pane : std::initializer_list<QWidget*>{&lists, &limits, &mails, &institutions, &accounts}) {
            pane->show();
        }
        limits.findChild<QAbstractButton*>("add")->click();
        requireEnglish(700);
    }
};

TEST_WITH_WIDGETS(WorkbenchEnglishTest)
#include "tst_workbench_english.moc"
