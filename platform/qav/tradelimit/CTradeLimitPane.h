// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tradelimit/CTradeLimitBook.h"

#include <QAV/EStockLimitTableType.h>
#include <WQ/CWidgetList.h>

class QPoint;

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

class CSecurityEdit;
class CTradeLimitModel;

/// The contents of CAccountStockTradeLimit: the bar to enter securities, the table, and the tool bar.
class CTradeLimitPane : public WQ::CWidgetList
{
    Q_OBJECT

public:
    CTradeLimitPane(EStockLimitTableType tableType, nvservice::EZvTraderType traderType, QWidget* parent);
    ~CTradeLimitPane() override;

    /// Replaces all entries. Securities are looked up on the server with this tag.
    void load(const std::string& systemTag, const std::vector<nvservice::CTradeLimitEntry>& entries);
    const CTradeLimitBook& book() const { return m_book; }

    /// Imports the rows of a CSV file after the user has confirmed the report on them.
    Q_INVOKABLE void importFile(const QString& fileName);

    /// Consumes the events of the controls inside.
    bool handleEvent(int, int, int, QString, void*) override { return true; }

private:
    QWidget* createEntryBar();
    QWidget* createTable(EStockLimitTableType tableType);
    QWidget* createActionBar();
    void createShortcuts();

    void onBookChanged(const CTradeLimitBook::Change& change);
    void showAllRows();
    void showCounts();
    void updateButtons();
    std::vector<int> selectedIds() const;

    /// An entry with the chosen list and direction.
    nvservice::CTradeLimitEntry newEntry() const;
    void addTyped();
    void removeSelected();
    /// @param above  true: the menu opens above `at`; false: below
    void openChangeMenu(const QPoint& at, bool above);
    void paste();
    /// True if the reason for a dialog is outdated, because other entries were loaded meanwhile or are being loaded.
    bool isOvertaken(unsigned loadNumber) const { return loadNumber != m_loadNumber || !isEnabled(); }
    void chooseImportFile();
    void takeIn(const QString& text, QChar separator, const QString& source, bool alwaysReport);
    void exportFile();
    void search(const QString& text);

    CTradeLimitBook m_book;
    unsigned m_loadNumber = 0;
    CTradeLimitModel* m_model = nullptr;
    WQ::CStandardHpfTable* m_table = nullptr;
    CSecurityEdit* m_securityEdit = nullptr;
    WQ::CLineEdit* m_searchEdit = nullptr;
    WQ::CComboBox* m_listCombo = nullptr;
    WQ::CComboBox* m_directionCombo = nullptr; ///< null if the trade type has no directions
    WQ::CSimpleTextWidget* m_counts = nullptr;
    WQ::CSmallNormalButton* m_changeButton = nullptr;
    WQ::CSmallNormalButton* m_removeButton = nullptr;
};

} // namespace QAV
