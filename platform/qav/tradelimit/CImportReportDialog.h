// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tradelimit/TradeLimitImport.h"

#include <WQ/CCommonDialog.h>

namespace QAV
{

/// Shows the outcome of each row before anything is imported, and asks for confirmation. Calls done(1) if the user
/// wants to import the valid rows.
class CImportReportDialog : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    CImportReportDialog(const QString& source, const TradeLimitImport& import, QWidget* parent);
    ~CImportReportDialog() override;

private:
    QWidget* createTable(const TradeLimitImport& import, QWidget* parent);
    QWidget* createButtons(std::size_t acceptedCount, QWidget* parent);
};

} // namespace QAV
