// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "support/qav/Client.h"
#include "support/wq/WatchedTest.h"

#include "service/store/Store.h"
#include "workbench/CInstallation.h"
#include "workbench/COpeningDialog.h"

#include <WQ/CMessageBox.h>

#include <QtTest>
#include <QtWidgets/QtWidgets>

using utils::EErrorCode;
using utils::NVError;
using workbench::CInstallation;
using workbench::COpeningDialog;

class FirstStartTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void init()
    {
        WatchedTest::init();
        m_folder = std::make_unique<QTemporaryDir>();
    }

    void cleanup()
    {
        support::centre().shutDown();
        m_folder.reset();
        WatchedTest::cleanup();
    }

    void theDatabaseOfAStartThatWasKilledIsFilled()
    {
        NVError error;
        QVERIFY(service::Store::open(service::StoreOptions::forCreating(file()), error)); // as far as that came
        CInstallation installation;
        error = installation.open(file(), {});
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
        QCOMPARE(support::centre().getAllClients().size(), std::size_t(3));
    }

    void aCancelledStartLeavesNothing()
    {
        CInstallation installation;
        int calls = 0;
        const NVError error = installation.open(file(), {}, [&](std::int64_t, std::int64_t) { return ++calls < 500; });
        QVERIFY(error.code() == EErrorCode::Cancelled);
        QCOMPARE(calls, 500);
        QVERIFY(support::centre().getAllClients().empty());
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList());
    }

    void theProgressEndsWithEveryRecord()
    {
        CInstallation installation;
        std::int64_t last = 0;
        std::int64_t all = 0;
        const NVError error = installation.open(file(), {100, 300}, [&](std::int64_t done, std::int64_t total) {
            const bool isNext = done == last + 1;
            last = done;
            all = total;
            return isNext;
        });
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
        QVERIFY(all > 400);
        QCOMPARE(last, all);
    }

    void whatIsDoneAtOnceShowsNoDialog()
    {
        COpeningDialog dialog;
        const NVError outcome = dialog.run([](const auto&) { return NVError(EErrorCode::Failed, "x"); });
        QVERIFY(outcome.code() == EErrorCode::Failed);
    }

    void theDialogShowsHowFarTheStartIs()
    {
        COpeningDialog dialog;
        std::atomic<bool> isSeen{false};
        m_boxes->expectDialog([&](WQ::CBaseDialog&) {
            auto* const bar = dialog.findChild<QProgressBar*>("openingBar");
            QTRY_COMPARE(bar->value(), 43);
            QCOMPARE(bar->maximum(), 100);
            QCOMPARE(textOf(dialog), QString("首次启动，正在创建示例数据…"));
            isSeen = true;
            QTRY_VERIFY(!dialog.isVisible());
        });
        const NVError outcome = dialog.run([&](const auto& progress) {
            bool goesOn = true;
            while (!isSeen) {
                goesOn = goesOn && progress(13, 30);
            }
            return goesOn ? NVError() : NVError(EErrorCode::Failed, "cancelled");
        });
        QVERIFY2(outcome.isSuccess(), outcome.errorMsg().c_str());
    }

    void theUserCancels_data()
    {
        const support::DataRows<bool> row("byKey");
        row("button", false);
        row("Esc", true);
    }
    void theUserCancels()
    {
        QFETCH(bool, byKey);
        COpeningDialog dialog;
        std::atomic<bool> isCancelled{false};
        std::atomic<bool> mayEnd{false};
        m_boxes->expectDialog([&](WQ::CBaseDialog&) {
            auto* const cancel = dialog.findChild<QAbstractButton*>("openingCancel");
            if (byKey) {
                QTest::keyClick(&dialog, Qt::Key_Escape);
            } else {
                QTest::mouseClick(cancel, Qt::LeftButton);
            }
            QVERIFY(dialog.isVisible());
            QVERIFY(!cancel->isEnabled());
            QCOMPARE(textOf(dialog), QString("正在取消…"));
            isCancelled = true;
            // What was reported before does not hide that it is being cancelled.
            QTRY_COMPARE(dialog.findChild<QProgressBar*>("openingBar")->value(), 70);
            QCOMPARE(textOf(dialog), QString("正在取消…"));
            mayEnd = true;
            QTRY_VERIFY(!dialog.isVisible());
        });
        const NVError outcome = dialog.run([&](const auto& progress) {
            while (progress(isCancelled ? 7 : 5, 10) || !mayEnd) {
            }
            return NVError(EErrorCode::Cancelled, "cancelled");
        });
        QVERIFY(outcome.code() == EErrorCode::Cancelled);
    }

    void theStartIsCancelledWhenTheProgramEnds()
    {
        WQ::IMessagePresenter* const scripted = WQ::CMessageBox::setPresenter(nullptr);
        COpeningDialog dialog;
        const auto quitWhenShown = [&dialog] {
            if (dialog.isVisible()) {
                QCoreApplication::exit();
            }
        };
        QTimer timer;
        connect(&timer, &QTimer::timeout, &dialog, quitWhenShown);
        timer.start(10);
        std::atomic<bool> isAsked{false};
        const NVError outcome = dialog.run([&](const auto& progress) {
            while (progress(1, 2)) {
                isAsked = true;
            }
            return NVError(EErrorCode::Cancelled, "cancelled");
        });
        WQ::CMessageBox::setPresenter(scripted);
        QVERIFY(isAsked);
        QVERIFY(outcome.code() == EErrorCode::Cancelled);
    }

private:
    static QString textOf(const COpeningDialog& dialog) { return dialog.findChild<QLabel*>("openingText")->text(); }
    QString file() const { return m_folder->filePath("workbench.db"); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

TEST_WITH_WIDGETS(FirstStartTest)
#include "tst_workbench_first_start.moc"
