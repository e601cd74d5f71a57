// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "RiskFixture.h"
#include "RiskModel.h"

#include <random>

namespace WQ
{
class CLineEdit;
class CMediumNormalButton;
class CStandardSimpleTable;
} // namespace WQ

namespace risk_test
{

/// Plays random courses on a risk settings dialog and on its model, and holds the two against each other: opening,
/// closing, editing, saving; replies that succeed, fail, time out, are lost, come in another order, or wait in the
/// event queue; and all of that again while a box or the picker is open. The two servers know groups of equal ids.
///
/// The courses go on from one another. Each is made of its own seed alone.
class RiskCourse : public WQ::IMessagePresenter
{
public:
    explicit RiskCourse(RiskFixture& client);
    ~RiskCourse() override;

    /// Where dialog and model differ, after the steps that led there; empty: nowhere.
    QString play(unsigned seed);
    /// How many saves were compared.
    int saves() const { return m_saves; }

    QMessageBox::StandardButton showMessage(const WQ::MessageRequest& request) override;
    int execDialog(WQ::CBaseDialog& dialog) override;

private:
    /// Boxes and pickers above one another.
    static constexpr int MaxOpenBoxes = 3;

    /// A request that waits for its answer. Those that the tabs send on their own account have no number.
    struct Request {
        int server = 0;
        QAV::ITransport::ReplyHandler handler;
        RiskReply about;
    };

    int below(int end) { return int(m_random() % unsigned(end)); }
    bool chance(int percent) { return below(100) < percent; }
    KeepingTransport& server(int number) { return number == 0 ? *m_client.shanghai : *m_client.shenzhen; }
    void note(const QString& step);
    void differ(const QString& what);
    template <typename Value>
    void compare(const char* what, const Value& actual, const Value& expected);

    void step();
    void open();
    void save();
    void answer();
    QAV::ITransport::Reply answerConfig(RiskReply& reply);
    QAV::ITransport::Reply answerCategories(RiskReply& reply);
    void deliver();
    void edit();
    void toggle();
    void addEntry();
    void editLimits();
    void pick();
    void showOrHide();

    /// Takes over what the dialog and its tabs have asked. The first category query of a load is the dialog's.
    void collect(int loadNumber, int saveNumber);
    ConfigPtr makeConfigOf(const GroupKey& group);
    void check();
    void checkTabs();
    QStringList limitRemarks() const;

    RiskFixture& m_client;
    WQ::IMessagePresenter* m_before;
    RiskModel m_model;
    std::mt19937 m_random;
    QStringList m_steps;
    QString m_difference;
    std::vector<Request> m_requests;
    /// Boxes and pickers that are open.
    int m_depth = 0;
    bool m_hasPicker = false;
    int m_page = 0;
    int m_marks = 0;
    int m_answers = 0;
    int m_saves = 0;

    struct Check {
        QAbstractButton* button;
        bool nvservice::CRatProofSetting::* field;
    };
    WQ::CLoadingMaskWidget& m_mask;
    QAV::CAssetsProportionWidget& m_assets;
    std::vector<Check> m_checks;
    QAbstractButton* m_saveButton;
    std::array<QAV::CAccountStockTradeLimit*, 2> m_limitTabs;
    std::array<WQ::CStandardSimpleTable*, RiskModel::PageCount> m_exemptTables;
    std::array<WQ::CLineEdit*, 2> m_securityEdits;
    std::array<QAbstractButton*, 2> m_addButtons;
    WQ::CStandardSimpleTable* m_limitTable;
};

} // namespace risk_test
