#pragma once

#include "account/tradelimit/TradeLimitImport.h"

#include <WQ/CCommonDialog.h>

namespace QAV
{

/// Shows what becomes of each row before anything is taken in, and asks. Ends with done(1) when the user wants the rows
/// that are in order.
class CImportReportDialog : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    CImportReportDialog(const QString& source, const TradeLimitImport& import, QWidget* parent);
    ~CImportReportDialog() override;

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    QWidget* createTable(const TradeLimitImport& import, QWidget* parent);
    QWidget* createButtons(std::size_t acceptedCount, QWidget* parent);
};

} // namespace QAV
