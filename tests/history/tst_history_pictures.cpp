// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/ThemePicture.h"

#include <WQ/CStandardTabControl.h>

using namespace history_test;
namespace DataType = nvservice::DataType;

/// The panel in both themes.
class HistoryPicturesTest : public HistoryTest
{
    Q_OBJECT

private slots:
    void aChangeIsOpen_data() { support::addThemes(); }
    void aChangeIsOpen()
    {
        open();
        const auto refused = makeEntry(298, 8);
        refused->outcome = 10;
        refused->outcomeText = "账号组已被王芳（wang）于2026-01-05 11:58:02修改，请刷新后重试";
        auto entries = makeEntries(300, 270);
        entries[2] = refused;
        entries[3] = makeEntry(297, 7, DataType::GroupRiskConfig);
        m_fixture->answer(DataType::Audit, entries, "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 31);
        m_fixture->changes().setCurrentKey("SH|297");
        const auto details = makeEntry(297, 7, DataType::GroupRiskConfig);
        const auto before = makeConfig(7, {"600001", "600002", "600003"}, 4);
        const auto after = makeConfig(7, {"600001", "600003", "600519"}, 5);
        after->rcRule.lists[0].entries[1].listKind = nvservice::EZVRCListKind::White;
        after->ratProofSetting.washTradeForbidden = true;
        details->before = before;
        details->after = after;
        m_fixture->answer(HistoryFixture::Details, {details});
        QTRY_VERIFY(m_fixture->isRead("项变更"));
        support::settleCallbacks();
        m_fixture->panel->onChanged(QString::fromStdString(Shanghai), {makeChange(400)}, true);
        support::takePicture(*m_fixture->panel, "history-change");
    }

    void nothingIsFound_data() { support::addThemes(); }
    void nothingIsFound()
    {
        open();
        m_fixture->fail(m_fixture->take(DataType::Audit), "服务端忙");
        QTRY_VERIFY(m_fixture->isRead("查询失败"));
        support::takePicture(*m_fixture->panel, "history-failed");
    }

    void aFilterHidesWhatWasLoaded_data() { support::addThemes(); }
    void aFilterHidesWhatWasLoaded()
    {
        open();
        auto entries = makeEntries(400, 301);
        entries[20] = makeEntry(380, 8);
        entries[40] = makeEntry(360, 8);
        m_fixture->answer(DataType::Audit, entries, "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组8"}});
        support::takePicture(*m_fixture->panel, "history-filtered");
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组9"}});
        support::takePicture(*m_fixture->panel, "history-all-filtered");
        m_fixture->click("加载更多");
        support::takePicture(*m_fixture->panel, "history-loading-more");
    }

    void aCheckRuns_data() { support::addThemes(); }
    void aCheckRuns()
    {
        open();
        m_fixture->panel->findChild<WQ::CStandardTabControl*>()->setCurrentIndex(1);
        QTRY_VERIFY(m_fixture->isRead("已用1秒"));
        support::takePicture(*m_fixture->panel, "history-checking");
        m_fixture->click("取消检查");
        support::takePicture(*m_fixture->panel, "history-check-cancelled");
    }

private:
    void open()
    {
        QFETCH(QString, theme);
        support::useTheme(theme);
        m_fixture->open();
    }
};

TEST_WITH_WIDGETS(HistoryPicturesTest)
#include "tst_history_pictures.moc"
