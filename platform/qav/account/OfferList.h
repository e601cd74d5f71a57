#pragma once

#include <QStringList>

class QCompleter;
class QWidget;

namespace QAV
{

/// Opens the list of an edit's completer below the edit, as wide as the edit and wide enough for its lines.
void openOfferList(QCompleter& completer, const QWidget& edit, const QStringList& lines);

} // namespace QAV
