// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "support/wq/ScriptedPresenter.h"
#include "support/wq/Widgets.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CBaseWidget.h>
#include <WQ/CCommonDialog.h>
#include <WQ/CMessageBox.h>
#include <WQ/CNormalButton.h>
#include <WQ/CUiResourceManager.h>

#include <QAbstractButton>
#include <QLabel>
#include <QProcess>
#include <QScrollArea>
#include <QTimer>

namespace
{

using WQ::CMessageBox;

const QString Title = QStringLiteral("提示");
const QString Text = QStringLiteral("确定要删除该项?");
constexpr auto YesNo = QMessageBox::Yes | QMessageBox::No;

/// Waits for the box that is open and hands it to `act`.
void onBox(const std::function<void(QDialog&)>& act)
{
    auto* const timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
        auto* const box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!box) {
            return;
        }
        timer->deleteLater();
        timer->stop();
        act(*box);
    });
    timer->start(1);
}

constexpr char FailingTestName[] = "failing_presenter";

} // namespace

class FailingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBoxDoesNotCome()
    {
        support::ScriptedPresenter presenter;
        presenter.expectMessage(QMessageBox::Question, Title, Text, YesNo, QMessageBox::Yes);
    }
};

class PresenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void anAnnouncedBoxIsAnsweredAndNothingFails()
    {
        support::ScriptedPresenter presenter;
        presenter.expectMessage(QMessageBox::Question, Title, Text, YesNo, QMessageBox::Yes);
        presenter.expectMessage(QMessageBox::Critical, Title, Text, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
        QCOMPARE(CMessageBox::question(nullptr, Title, Text, YesNo), QMessageBox::Yes);
        QCOMPARE(CMessageBox::critical(nullptr, Title, Text, QMessageBox::Ok, QMessageBox::Ok), QMessageBox::Ok);
        QCOMPARE(presenter.failures(), QStringList());
        QVERIFY(presenter.verify());
    }

    void aBoxThatDiffersIsFound_data()
    {
        const support::DataRows<int, QString, QString, int, int> row("kind", "title", "text", "buttons",
                                                                     "defaultButton");
        row("kind", int(QMessageBox::Warning), Title, Text, int(YesNo), 0);
        row("title", int(QMessageBox::Question), "错误", Text, int(YesNo), 0);
        row("text, by a blank", int(QMessageBox::Question), Title, Text + QLatin1Char(' '), int(YesNo), 0);
        row("buttons", int(QMessageBox::Question), Title, Text, int(YesNo | QMessageBox::Cancel), 0);
        row("default", int(QMessageBox::Question), Title, Text, int(YesNo), int(QMessageBox::No));
    }
    void aBoxThatDiffersIsFound()
    {
        QFETCH(int, kind);
        QFETCH(QString, title);
        QFETCH(QString, text);
        QFETCH(int, buttons);
        QFETCH(int, defaultButton);
        support::ScriptedPresenter presenter;
        presenter.expectMessage(QMessageBox::Icon(kind), title, text, QMessageBox::StandardButtons(buttons),
                                QMessageBox::Yes, QMessageBox::StandardButton(defaultButton));
        CMessageBox::question(nullptr, Title, Text, YesNo);
        QCOMPARE(presenter.takeFailures().size(), 1);
    }

    void aBoxThatNobodyAnnouncedIsFound()
    {
        support::ScriptedPresenter presenter;
        QCOMPARE(CMessageBox::information(nullptr, Title, Text), QMessageBox::NoButton);
        const QStringList failures = presenter.takeFailures();
        QCOMPARE(failures.size(), 1);
        QVERIFY(failures[0].contains(Text));
    }

    void aBoxThatDoesNotComeIsFound()
    {
        support::ScriptedPresenter presenter;
        presenter.expectMessage(QMessageBox::Question, Title, Text, YesNo, QMessageBox::Yes);
        QCOMPARE(presenter.failures().size(), 1);
        QCOMPARE(presenter.takeFailures().size(), 1);
    }

    void anAnswerThatTheBoxDoesNotOfferIsFound()
    {
        support::ScriptedPresenter presenter;
        presenter.expectMessage(QMessageBox::Question, Title, Text, YesNo, QMessageBox::Cancel);
        CMessageBox::question(nullptr, Title, Text, YesNo);
        QCOMPARE(presenter.takeFailures().size(), 1);
    }

    void aFailureThatIsNotTakenFailsTheTest()
    {
        // The failing test runs in a process of its own, which is this program again.
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(FailingTestName)});
        QVERIFY(process.waitForFinished());
        const QString output = QString::fromUtf8(process.readAllStandardOutput());
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 1);
        QVERIFY2(output.contains(QStringLiteral("FAIL!  : FailingTest::aBoxDoesNotCome() did not come: question")),
                 qPrintable(output));
    }

    void aScriptedDialogGivesItsResult()
    {
        support::ScriptedPresenter presenter;
        WQ::CCommonDialog dialog;
        presenter.expectDialog([](WQ::CBaseDialog& shown) {
            QVERIFY(shown.isVisible());
            shown.done(1);
        });
        presenter.expectDialog([](WQ::CBaseDialog& shown) { QTest::keyClick(&shown, Qt::Key_Escape); });
        QCOMPARE(dialog.exec(), 1);
        QCOMPARE(dialog.exec(), 0);
        QCOMPARE(presenter.failures(), QStringList());
    }

    void aDialogThatIsLeftOpenIsFound()
    {
        support::ScriptedPresenter presenter;
        WQ::CCommonDialog dialog;
        presenter.expectDialog([](WQ::CBaseDialog&) {});
        QCOMPARE(dialog.exec(), 0);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(presenter.takeFailures().size(), 1);
    }

    void aDialogInPlaceOfABoxIsFound()
    {
        support::ScriptedPresenter presenter;
        WQ::CCommonDialog dialog;
        presenter.expectMessage(QMessageBox::Question, Title, Text, YesNo, QMessageBox::Yes);
        QCOMPARE(dialog.exec(), 0);
        QCOMPARE(presenter.takeFailures().size(), 2);
    }

    void aBoxMayComeWhileADialogIsOpen()
    {
        support::ScriptedPresenter presenter;
        WQ::CCommonDialog dialog;
        presenter.expectDialog([&presenter](WQ::CBaseDialog& shown) {
            presenter.expectMessage(QMessageBox::Warning, Title, Text);
            CMessageBox::warning(&shown, Title, Text);
            shown.done(1);
        });
        QCOMPARE(dialog.exec(), 1);
        QCOMPARE(presenter.failures(), QStringList());
    }

    void thePresenterBeforeComesBack()
    {
        WQ::IMessagePresenter* const before = CMessageBox::presenter();
        {
            support::ScriptedPresenter presenter;
            QCOMPARE(CMessageBox::presenter(), static_cast<WQ::IMessagePresenter*>(&presenter));
        }
        QCOMPARE(CMessageBox::presenter(), before);
    }

    void theBuiltInBoxShowsTitleTextAndChineseButtons()
    {
        onBox([](QDialog& box) {
            QCOMPARE(box.windowTitle(), Title);
            const auto labels = box.findChildren<QLabel*>();
            QVERIFY(std::any_of(labels.begin(), labels.end(), [](QLabel* label) { return label->text() == Text; }));
            QVERIFY(support::buttonOf(box, QStringLiteral("是")));
            QVERIFY(support::buttonOf(box, QStringLiteral("否")));
            QTest::mouseClick(support::buttonOf(box, QStringLiteral("是")), Qt::LeftButton);
        });
        QCOMPARE(CMessageBox::question(nullptr, Title, Text, YesNo), QMessageBox::Yes);
    }

    void escAnswersNo()
    {
        onBox([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
        QCOMPARE(CMessageBox::question(nullptr, Title, Text, YesNo), QMessageBox::No);
        onBox([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
        QCOMPARE(CMessageBox::information(nullptr, Title, Text), QMessageBox::Ok);
        onBox([](QDialog& box) { box.close(); });
        QCOMPARE(CMessageBox::warning(nullptr, Title, Text, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel),
                 QMessageBox::Cancel);
    }

    void enterGivesTheDefaultAnswerAndElseTheHarmlessOne()
    {
        const auto enter = [](QDialog& box) {
            QVERIFY(QTest::qWaitForWindowActive(&box));
            QTest::keyClick(box.windowHandle(), Qt::Key_Return);
        };
        onBox(enter);
        QCOMPARE(CMessageBox::question(nullptr, Title, Text, YesNo, QMessageBox::Yes), QMessageBox::Yes);
        onBox(enter);
        QCOMPARE(CMessageBox::question(nullptr, Title, Text, YesNo), QMessageBox::No);
    }

    void theButtonThatEnterPressesLooksSo()
    {
        const auto lookOf = [](const QDialog& box, const QString& text) {
            return qobject_cast<WQ::CNormalButton*>(support::buttonOf(box, text))->buttonType();
        };
        onBox([&](QDialog& box) {
            QCOMPARE(lookOf(box, QStringLiteral("是")), int(WQ::NormalButton));
            QCOMPARE(lookOf(box, QStringLiteral("否")), int(WQ::PrimaryButton));
            QCOMPARE(box.focusWidget(), support::buttonOf(box, QStringLiteral("否")));
            box.close();
        });
        CMessageBox::information(nullptr, Title, Text, YesNo);
        onBox([&](QDialog& box) {
            QCOMPARE(lookOf(box, QStringLiteral("是")), int(WQ::PrimaryButton));
            QCOMPARE(box.focusWidget(), support::buttonOf(box, QStringLiteral("是")));
            box.close();
        });
        CMessageBox::question(nullptr, Title, Text, YesNo, QMessageBox::Yes);
    }

    void aBoxGoesWithItsParent()
    {
        auto* const parent = new WQ::CBaseWidget(nullptr);
        parent->show();
        onBox([parent](QDialog&) { delete parent; });
        QCOMPARE(CMessageBox::question(parent, Title, Text, YesNo), QMessageBox::NoButton);
    }

    void aTextWithoutEndScrolls()
    {
        const QString text = QStringLiteral("很长的文字").repeated(2000);
        onBox([](QDialog& box) {
            QVERIFY(box.height() < 600);
            QVERIFY(box.findChild<QScrollArea*>());
            box.close();
        });
        CMessageBox::information(nullptr, Title, text);
    }

    void markupInATextIsShownAsItIs()
    {
        onBox([](QDialog& box) {
            for (auto* const label : box.findChildren<QLabel*>()) {
                QVERIFY(label->textFormat() == Qt::PlainText || label->text().isEmpty());
            }
            box.close();
        });
        CMessageBox::information(nullptr, Title, QStringLiteral("<b>账号</b>"));
    }
};

TEST_WITH_WIDGETS(PresenterTest)
/// Run by the test above, never by CTest.
static const support::TestRegistration failingRegistration(FailingTestName,
                                                           support::runTest<FailingTest, QApplication>);

#include "tst_presenter.moc"
