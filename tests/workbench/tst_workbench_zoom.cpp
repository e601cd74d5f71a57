// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "support/TestProgram.h"

#include "workbench/CLogInDialog.h"
#include "workbench/CManualDialog.h"
#include "workbench/CMessageListDialog.h"
#include "workbench/COpeningDialog.h"
#include "workbench/CPluginDialog.h"
#include "workbench/Texts.h"

#include <WQ/CMessageBox.h>
#include <WQ/CMessageHistory.h>
#include <utils/Translation.h>

using namespace workbench;

namespace
{

/// What cuts a text of this widget; empty if it is to be seen as a whole.
QString cutBy(const QWidget& widget)
{
    QSize needed;
    if (const auto* const label = qobject_cast<const QLabel*>(&widget); label && !label->text().isEmpty()) {
        needed = label->wordWrap() ? QSize(0, label->heightForWidth(label->width())) : label->sizeHint();
    } else if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
        needed = button->text().isEmpty() ? QSize() : button->fontMetrics().size(Qt::TextShowMnemonic, button->text());
    } else if (const auto* const edit = qobject_cast<const QLineEdit*>(&widget)) {
        needed = {edit->fontMetrics().horizontalAdvance(edit->placeholderText()), edit->fontMetrics().height()};
    }
    if (needed.isEmpty() && needed.height() <= 0) {
        return {};
    }
    if (needed.width() > widget.width() || needed.height() > widget.height()) {
        return QString("%1x%2 of %3x%4")
            .arg(widget.width())
            .arg(widget.height())
            .arg(needed.width())
            .arg(needed.height());
    }
    const QWidget* inner = &widget;
    for (const QWidget* outer = widget.parentWidget(); outer && !inner->isWindow(); outer = outer->parentWidget()) {
        const QRect place(widget.mapTo(outer, QPoint(0, 0)), widget.size());
        if (qobject_cast<const QAbstractScrollArea*>(outer->parentWidget())) {
            return {}; // the user scrolls
        }
        if (!outer->rect().contains(place)) {
            return QString("its %1").arg(outer->metaObject()->className());
        }
        inner = outer;
    }
    return {};
}

void checkTexts(QWidget& window, int least)
{
    QCoreApplication::processEvents();
    int texts = 0;
    for (const QWidget* const widget : window.findChildren<QWidget*>()) {
        // Lists scroll.
        const bool isText = qobject_cast<const QLabel*>(widget) || qobject_cast<const QAbstractButton*>(widget) ||
                            qobject_cast<const QLineEdit*>(widget);
        if (!isText || !widget->isVisible() || qobject_cast<QAbstractScrollArea*>(widget->parentWidget())) {
            continue;
        }
        ++texts;
        const QString cut = cutBy(*widget);
        QVERIFY2(cut.isEmpty(), qPrintable(QString("%1 %2 “%3” is cut by %4")
                                               .arg(widget->metaObject()->className(), widget->objectName(),
                                                    widget->property("text").toString(), cut)));
    }
    QVERIFY2(texts >= least, qPrintable(QString::number(texts)));
    const QString folder = qEnvironmentVariable("QAV_PICTURE_DIR");
    if (!folder.isEmpty()) {
        window.grab().save(QString("%1/zoom-%2-%3.png")
                               .arg(folder, QString(QTest::currentDataTag()).replace(' ', '-'),
                                    window.objectName().isEmpty() ? "box" : window.objectName()));
    }
}

} // namespace

/// No text of the client's dialogs is cut, however large the fonts are, in both languages.
class WorkbenchZoomTest : public MainWindowFixture
{
    Q_OBJECT

    /// Sets what the row of the running function says, and the usual again at its end.
    class Row
    {
    public:
        Row()
        {
            QFETCH(int, percent);
            QFETCH(bool, isEnglish);
            registerTexts();
            utils::setLanguage(isEnglish ? utils::ELanguage::English : utils::ELanguage::Chinese);
            WQ::CUiResourceManager::instance()->setFontScale(percent / 100.0);
        }
        ~Row()
        {
            WQ::CUiResourceManager::instance()->setFontScale(1);
            utils::setLanguage(utils::ELanguage::Chinese);
        }
    };

private slots:
    void theLogIn_data() { sizes(); }
    void theLogIn()
    {
        const Row row;
        m_log->allow("03-throwing.plugin.json");
        start();
        CLogInDialog dialog(*m_session, *m_settings, nullptr);
        dialog.show();
        checkTexts(dialog, 6);
        dialog.findChild<QLineEdit*>("user")->clear();
        dialog.submit();
        QVERIFY(!dialog.errorText().isEmpty());
        checkTexts(dialog, 7);
    }

    void theFirstStart_data() { sizes(); }
    void theFirstStart()
    {
        const Row row;
        COpeningDialog dialog;
        dialog.show();
        checkTexts(dialog, 3);
    }

    void thePlugIns_data() { sizes(); }
    void thePlugIns()
    {
        const Row row;
        m_log->allow("03-throwing.plugin.json");
        start();
        CPluginDialog dialog(*m_catalogue, nullptr);
        dialog.show();
        checkTexts(dialog, 2);
        const auto* const list = dialog.findChild<QTreeWidget*>("pluginList");
        const QString name = list->topLevelItem(0)->text(0);
        QVERIFY(list->visualItemRect(list->topLevelItem(0)).height() >= list->fontMetrics().height());
        QVERIFY(list->columnWidth(0) > list->fontMetrics().horizontalAdvance(name));
    }

    void theMessages_data() { sizes(); }
    void theMessages()
    {
        const Row row;
        WQ::CMessageHistory::instance().add("提示", QString(200, QChar(0x4e2d)));
        CMessageListDialog dialog(nullptr);
        dialog.show();
        checkTexts(dialog, 3);
        const auto* const list = dialog.findChild<QListWidget*>("messageList");
        QVERIFY(list->visualItemRect(list->item(0)).height() > 2 * list->fontMetrics().height());
        WQ::CMessageHistory::instance().clear();
    }

    void theManual_data() { sizes(); }
    void theManual()
    {
        const Row row;
        CManualDialog dialog(nullptr);
        dialog.show();
        checkTexts(dialog, 2);
        const auto* const pages = dialog.findChild<QListWidget*>("manualPages");
        QVERIFY(pages->sizeHintForColumn(0) <= pages->viewport()->width());
    }

    void theAboutBox_data() { sizes(); }
    void theAboutBox()
    {
        const Row row;
        m_log->allow("03-throwing.plugin.json");
        start();
        WQ::IMessagePresenter* const scripted = WQ::CMessageBox::setPresenter(nullptr);
        bool isSeen = false;
        QTimer::singleShot(0, this, [&] {
            QWidget* const box = QApplication::activeModalWidget();
            isSeen = box != nullptr;
            if (box) {
                checkTexts(*box, 3);
                box->close();
            }
        });
        m_window->showAbout();
        WQ::CMessageBox::setPresenter(scripted);
        QVERIFY(isSeen);
    }

private:
    static void sizes()
    {
        const support::DataRows<int, bool> row("percent", "isEnglish");
        row("100 Chinese", 100, false);
        row("150 Chinese", 150, false);
        row("150 English", 150, true);
        row("200 Chinese", 200, false);
        row("200 English", 200, true);
    }
};

TEST_WITH_WIDGETS(WorkbenchZoomTest)
#include "tst_workbench_zoom.moc"
