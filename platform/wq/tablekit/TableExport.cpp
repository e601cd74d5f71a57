// SPDX-License-Identifier: Apache-2.0
#include "tablekit/TableExport.h"

#include <WQ/CMessageBox.h>

#include <QFileDialog>

namespace WQ
{

void exportByDialog(QWidget* table, const std::function<bool(const QString& fileName, QString* error)>& write)
{
    QString fileName = QFileDialog::getSaveFileName(table, QStringLiteral("导出CSV"), QStringLiteral("导出.csv"),
                                                    QStringLiteral("CSV文件 (*.csv)"));
    if (fileName.isEmpty()) {
        return;
    }
    if (!fileName.contains(QLatin1Char('.'))) {
        fileName += QStringLiteral(".csv");
    }
    QString error;
    if (!write(fileName, &error)) {
        CMessageBox::warning(table, QStringLiteral("导出CSV"), error, QMessageBox::Ok, QMessageBox::NoButton);
    }
}

} // namespace WQ
