// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lookup/CSecurityDirectory.h"
#include "tradelimit/CTradeLimitBook.h"

#include <QAV/EStockLimitTableType.h>
#include <WQ/CWidgetList.h>

#include <vector>

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

class CLookUpEdit;
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
    bool handleEvent(int type, int id, int param, QString text, void* data) override;

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

    nvservice::EZVRCListKind chosenListKind() const;
    nvservice::EZVRCDirection chosenDirection() const;
    std::vector<int> offersFor(const QString& typed);
    QString offerText(int security) const;
    /// Reads the typed text into `entry`. Returns the problem; empty if there is none.
    QString readTyped(nvservice::CTradeLimitEntry& entry) const;
    int securityOf(const QString& typed, QString& problem) const;
    void addTyped();
    void removeSelected();
    /// @param above  true: the menu opens above `at`; false: below
    void openChangeMenu(const QPoint& at, bool above);
    void changeSelected(const std::function<void(nvservice::CTradeLimitEntry&)>& edit);
    void paste();
    /// True if the reason for a dialog is outdated, because other entries were loaded meanwhile or are being loaded.
    bool isOvertaken(unsigned loadNumber) const { return loadNumber != m_loadNumber || !isEnabled(); }
    void chooseImportFile();
    void takeIn(const QString& text, QChar separator, const QString& source, bool alwaysReport);
    void exportFile();
    void search(const QString& text);

    CTradeLimitBook m_book;
    CSecurityDirectory m_directory;
    unsigned m_loadNumber = 0;
    int m_chosenSecurity = -1;
    CTradeLimitModel* m_model = nullptr;
    WQ::CStandardHpfTable* m_table = nullptr;
    CLookUpEdit* m_securityEdit = nullptr;
    WQ::CLineEdit* m_searchEdit = nullptr;
    WQ::CComboBox* m_listCombo = nullptr;
    WQ::CComboBox* m_directionCombo = nullptr;
    WQ::CSimpleTextWidget* m_counts = nullptr;
    WQ::CSmallNormalButton* m_changeButton = nullptr;
    WQ::CSmallNormalButton* m_removeButton = nullptr;
    WQ::CSmallNormalButton* m_undoButton = nullptr;
    WQ::CSmallNormalButton* m_redoButton = nullptr;
};

} // namespace QAV
