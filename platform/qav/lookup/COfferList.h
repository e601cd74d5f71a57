// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <vector>

class QCompleter;
class QKeyEvent;
class QLineEdit;
class QStringListModel;

namespace QAV
{

/// The drop-down list of a line edit, with offers for what the user types. None is chosen automatically: Up and Down
/// move in the list, Enter or a click chooses. Belongs to the edit, which passes on its keys.
class COfferList final : public QObject
{
    Q_OBJECT

public:
    /// Finds the offers for a typed text, best first, as numbers of the caller.
    using Find = std::function<std::vector<int>(const QString& typed)>;
    /// The line of an offer in the list.
    using Text = std::function<QString(int offer)>;

    COfferList(QLineEdit* edit, const QString& accessibleName, Find find, Text text);

    /// Shows the offers for `typed`; hides the list if there are none.
    void show(const QString& typed);
    void hide();
    bool isVisible() const;
    /// Hides the list and chooses its current offer. Returns false if there is none.
    bool chooseCurrent();
    /// Enter chooses the current offer; Up and Down show a hidden list with the offers for `browsed`. Returns false if
    /// the key is the edit's.
    bool handleKey(QKeyEvent* event, const QString& browsed);

signals:
    void sigChosen(int offer);

private:
    QLineEdit* m_edit;
    Find m_find;
    Text m_text;
    std::vector<int> m_offers; ///< in the order of the lines
    QStringListModel* m_lines;
    QCompleter* m_completer;
};

} // namespace QAV
