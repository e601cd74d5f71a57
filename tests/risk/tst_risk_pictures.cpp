// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"

#include "exempt/ControlId.h"
#include "support/TestProgram.h"
#include "support/wq/ThemePicture.h"
#include "support/wq/Widgets.h"

#include <WQ/CCheckBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSmallNormalButton.h>

using namespace risk_test;
using support::takePicture;

static std::vector<nvservice::IDataPtr> manyCategories()
{
    const QStringList names{"国债",           "地方政府债",   "政策性金融债", "企业债",
                            "可转换公司债券", "沪市主板股票", "深市主板股票", "科创板股票",
                            "创业板股票",     "北交所股票",   "货币市场基金", "交易型开放式基金",
                            "公募REITs",      "股指期货",     "国债期货",     "股票期权"};
    std::vector<nvservice::IDataPtr> categories;
    for (int i = 0; i < 160; ++i) {
        const QString name = i < names.size() ? names[i] : names[i % names.size()] + QString::number(i / names.size());
        categories.push_back(makeCategory(10 + i, name.toStdString()));
    }
    return categories;
}

static boost::shared_ptr<nvservice::CAccountGroupRCConfig> richConfig()
{
    using namespace nvservice;
    const auto config = makeConfig(7, "一");
    const std::pair<const char*, const char*> futures[] = {
        {"rb2605", "螺纹钢2605"}, {"IF2606", "沪深300股指2606"}, {"au2606", "黄金2606"}, {"sc2605", "原油2605"},
        {"m2609", "豆粕2609"},    {"TA605", "精对苯二甲酸605"},  {"T2606", "国债2606"},  {"ag2606", "白银2606"}};
    std::vector<CTradeLimitEntry>& entries = config->rcRule.list(EZvTraderType::Future).entries;
    entries.clear();
    for (const auto& [code, name] : futures) {
        entries.push_back({code, name, {}, {}, {}});
        entries.back().listKind = EZVRCListKind(entries.size() % 3 == 0);
    }
    config->assetsRCs.clear();
    for (int i = 0; i < 6; ++i) {
        CAssetsRC limit;
        limit.ruleId = i;
        limit.assetClass = i % 2 == 0 ? EZVRCAssetClass::ByCategory : EZVRCAssetClass::Stock;
        limit.categoryId = i % 2 == 0 ? 10 + i : -1;
        limit.base = EZVRCQuantity::NetAssets;
        limit.comparison = EZVRCComparison::GreaterOrEqual;
        limit.threshold = 12.5 * (i + 1);
        limit.action = EZVRCAction(i % 2);
        limit.enabled = i != 3;
        limit.remark = i % 2 == 0 ? "投委会第" + std::to_string(i + 3) + "次会议" : "";
        config->assetsRCs.push_back(limit);
    }
    for (int i = 0; i < 12; ++i) {
        config->ratProofSetting.reverseOrderExemptCategoryIds.push_back(11 + i);
    }
    return config;
}

/// What the risk settings, the picker and every message look like, in every theme.
class RiskPicturesTest : public RiskTest
{
    Q_OBJECT

private slots:
    void init()
    {
        RiskTest::init();
        m_client->boxes.reset();
        m_client->dialog().resize(1300, 700);
    }

    void everyStateIsPaintedWithTheTheme_data() { support::addThemes(); }

    void everyStateIsPaintedWithTheTheme()
    {
        QFETCH(QString, theme);
        support::useTheme(theme);
        loading();
        tabPages();
        smallestDialog();
        picker();
        refusals();
        messages();
    }

    void theOptionsOfAPageAreWholeInTheSmallestDialog_data() { everyStateIsPaintedWithTheTheme_data(); }

    void theOptionsOfAPageAreWholeInTheSmallestDialog()
    {
        QFETCH(QString, theme);
        support::useTheme(theme);
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->dialog().resize(m_client->dialog().minimumSize());
        for (const int page : {2, 3}) {
            m_client->tabs().setCurrentIndex(page);
            QCoreApplication::processEvents();
            QWidget& shown = *m_client->tabs().tabWidget(page);
            for (WQ::CCheckBox* const box : shown.findChildren<WQ::CCheckBox*>()) {
                QVERIFY(shown.rect().contains(QRect(box->mapTo(&shown, QPoint()), box->size())));
                // Nothing of the text reaches the edge.
                const QImage image = box->grab().toImage();
                for (int y = 0; y < image.height(); ++y) {
                    QVERIFY2(image.pixel(image.width() - 1, y) == image.pixel(image.width() - 1, 0),
                             qPrintable(box->text()));
                }
            }
        }
    }

private:
    void loading()
    {
        m_client->open(makeGroup(7, "远山稳健成长一号"));
        takePicture(m_client->dialog(), "loading");
        m_client->answerConfig({richConfig()});
        m_client->answerCategories(manyCategories());
        QTRY_VERIFY(m_client->mask().isHidden());
        // The asset tab asks for the categories of its limits on its own.
        QTRY_VERIFY(m_client->shanghai->queries(nvservice::DataType::Category) > 0);
        m_client->answerCategories(manyCategories());
        support::settleCallbacks();
    }

    void tabPages()
    {
        const QStringList names{"lists", "assets", "reverse-order", "wash-trade"};
        for (int page = 0; page < m_client->tabs().count(); ++page) {
            m_client->tabs().setCurrentIndex(page);
            takePicture(m_client->dialog(), names[page]);
        }
    }

    void smallestDialog()
    {
        const QSize before = m_client->dialog().size();
        m_client->dialog().resize(m_client->dialog().minimumSize());
        const QStringList names{"lists-small", "assets-small", "reverse-order-small", "wash-trade-small"};
        for (int page = 0; page < m_client->tabs().count(); ++page) {
            m_client->tabs().setCurrentIndex(page);
            takePicture(m_client->dialog(), names[page]);
        }
        m_client->dialog().resize(before);
    }

    void picker()
    {
        m_client->tabs().setCurrentIndex(2);
        inModal([&] { clickButton("设置豁免分类"); },
                [](QWidget& picker) {
                    takePicture(picker, "picker");
                    QTest::keyClicks(picker.findChild<WQ::CLineEdit*>(), "gupiao");
                    for (WQ::CStandardSimpleTable* const table : picker.findChildren<WQ::CStandardSimpleTable*>()) {
                        if (table->tableId() == QAV::AvailableCategoryTableId) {
                            table->setRowSelected(table->rowID(1), true);
                        }
                    }
                    takePicture(picker, "picker-search");
                    QTest::keyClick(&picker, Qt::Key_Escape);
                });
    }

    void refusals()
    {
        m_client->tabs().setCurrentIndex(0);
        auto* const lists = m_client->tabs().tabWidget(0)->findChild<WQ::CStandardTabControl*>();
        auto* const security = lists->tabWidget(0)->findChild<WQ::CLineEdit*>("security");
        security->setText("ag2606");
        QTest::keyClick(security, Qt::Key_Return);
        WQ::CMessageTip* tip = WQ::CMessageTip::tipOf(security);
        QVERIFY(tip);
        QTRY_COMPARE(tip->opacity(), 1.0);
        takePicture(m_client->dialog(), "lists-refusal");

        auto* const limits = m_client->assets().findChild<WQ::CStandardSimpleTable*>("limits");
        QTest::mouseClick(m_client->assets().findChild<QAbstractButton*>("add"), Qt::LeftButton);
        m_client->clickSave();
        QCOMPARE(m_client->tabs().currentIndex(), 1);
        constexpr int ThresholdColumn = 7;
        tip = WQ::CMessageTip::tipOf(limits->itemWidget(limits->currentRow(), ThresholdColumn));
        QVERIFY(tip);
        QTRY_COMPARE(tip->opacity(), 1.0);
        takePicture(m_client->dialog(), "assets-refusal");
        QTest::mouseClick(m_client->assets().findChild<QAbstractButton*>("remove"), Qt::LeftButton);
    }

    void messages()
    {
        const auto answer = [&](const QAV::ITransport::Reply& reply) {
            m_client->answerSave(reply);
            support::settleCallbacks();
        };
        m_client->tabs().setCurrentIndex(0);
        m_client->clickSave();
        QVERIFY(m_client->mask().isVisible());
        takePicture(m_client->dialog(), "saving");
        takeBox("saved", [&] { answer(support::replyWith({})); }, "确定");
        m_client->clickSave();
        const char* const conflict =
            "账号组“远山稳健成长一号”的风控设置已被王五（wangwu）于2026-01-05 09:30:00修改，请重新打开后再设置";
        takeBox(
            "save-refused", [&] { answer(support::replyWithError(utils::EErrorCode::Conflict, conflict)); }, "确定");
        m_client->tabs().setCurrentIndex(3);
        auto* const remove = m_client->tabs().tabWidget(3)->findChild<WQ::CSmallNormalButton*>();
        takeBox("delete", [&] { QTest::mouseClick(remove, Qt::LeftButton); }, "否");

        m_client->open(makeGroup(8, "二"));
        m_client->answerCategories(someCategories());
        m_client->shanghai->takeQueryOf(nvservice::DataType::GroupRiskConfig)
            .handler(support::replyWithError(utils::EErrorCode::StorageFailure, "账号组不存在或已被删除"));
        takeBox("load-failed", [&] { support::settleCallbacks(); }, "确定");
        support::settleCallbacks();
    }

    void clickButton(const QString& text) { QTest::mouseClick(&m_client->button(text), Qt::LeftButton); }
    /// Runs `open`, which opens a box or a dialog, and `use` on it, which has to close it.
    static void inModal(const std::function<void()>& open, const std::function<void(QWidget&)>& use)
    {
        bool used = false;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &timer, [&] {
            QWidget* const modal = QApplication::activeModalWidget();
            if (!modal || !modal->isVisible()) {
                return;
            }
            timer.stop();
            used = true;
            use(*modal);
        });
        timer.start(1);
        open();
        QVERIFY(used);
    }

    /// Takes the picture of the box that `open` opens and presses the button with this text.
    static void takeBox(const QString& name, const std::function<void()>& open, const QString& answer)
    {
        inModal(open, [&](QWidget& box) {
            takePicture(box, name);
            support::clickButton(box, answer);
        });
    }
};

TEST_WITH_WIDGETS(RiskPicturesTest)
#include "tst_risk_pictures.moc"
