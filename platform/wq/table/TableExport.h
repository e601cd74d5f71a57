#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace WQ
{

/// Asks the user for a file and has `write` fill it with CSV; tells the user why when that fails.
void exportByDialog(QWidget* table, const std::function<bool(const QString& fileName, QString* error)>& write);

} // namespace WQ
