#pragma once

#include "account/tradelimit/CTradeLimitBook.h"

#include <QAV/EStockLimitTableType.h>
#include <WQ/CWidgetList.h>

#include <memory>
#include <vector>

class QAction;

namespace WQ
{
class CComboBox;
class CLineEdit;
class CSimpleTextWidget;
class CSmallNormalButton;
class CStandardHpfTable;
} // namespace WQ

namespace QAV
{

class CTradeLimitModel;

/// What CAccountStockTradeLimit shows: the bar that enters securities, the table, the bar of what can be done to it.
class CTradeLimitPane : public WQ::CWidgetList
{
    Q_OBJECT

public:
    CTradeLimitPane(EStockLimitTableType tableType, nvservice::EZvTraderType traderType, QWidget* parent);
    ~CTradeLimitPane() override;

    CTradeLimitBook& book() { return m_book; }

    /// Ends the events of the controls inside here: they concern nobody above.
    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    QWidget* createEntryBar();
    QWidget* createTable(EStockLimitTableType tableType);
    QWidget* createActionBar();
    void createShortcuts();
    WQ::CSmallNormalButton* createButton(QWidget* bar, int id, const QString& text, const QString& tip);

    void onBookChanged(const CTradeLimitBook::Change& change);
    void showCounts();
    void updateButtons();
    std::vector<int> selectedIds() const;

    nvservice::EZVRCListKind chosenListKind() const;
    nvservice::EZVRCDirection chosenDirection() const;
    void addTyped();
    void removeSelected();
    void search(const QString& text);
    void undo();
    void redo();

    CTradeLimitBook m_book;
    CTradeLimitModel* m_model = nullptr;
    WQ::CStandardHpfTable* m_table = nullptr;
    WQ::CLineEdit* m_securityEdit = nullptr;
    WQ::CLineEdit* m_searchEdit = nullptr;
    WQ::CComboBox* m_listCombo = nullptr;
    WQ::CComboBox* m_directionCombo = nullptr;
    WQ::CSimpleTextWidget* m_counts = nullptr;
    WQ::CSmallNormalButton* m_removeButton = nullptr;
    WQ::CSmallNormalButton* m_undoButton = nullptr;
    WQ::CSmallNormalButton* m_redoButton = nullptr;
};

} // namespace QAV
