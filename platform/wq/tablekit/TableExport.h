// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace WQ
{

/// Asks the user for a file and calls `write` to fill it with CSV. Shows the error if that fails.
void exportByDialog(QWidget* table, const std::function<bool(const QString& fileName, QString* error)>& write);

} // namespace WQ
