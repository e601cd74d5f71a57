// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

class QCompleter;
class QWidget;

namespace QAV
{

/// Opens the list of an edit's completer below the edit, at least as wide as the edit and as its lines.
void openOfferList(QCompleter& completer, const QWidget& edit, const QStringList& lines);

} // namespace QAV
