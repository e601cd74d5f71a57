// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CLineEdit.h>

#include <functional>
#include <vector>

class QCompleter;
class QStringListModel;

namespace QAV
{

/// A line edit with a list of suggestions below it. None is chosen automatically: Up and Down move in the list, Enter
/// or a click chooses a suggestion. Enter without one is reported as in CLineEdit.
class CLookUpEdit : public WQ::CLineEdit
{
    Q_OBJECT

public:
    /// Finds the suggestions for a typed text, best first, as numbers of the caller.
    using Find = std::function<std::vector<int>(const QString& typed)>;
    /// The text of a suggestion, in the list and, when it is chosen, in the edit.
    using Text = std::function<QString(int offer)>;

    CLookUpEdit(int id, QWidget* parent);
    ~CLookUpEdit() override;

    void setSource(Find find, Text text);
    void setListName(const QString& accessibleName);
    /// Searches again for the typed text, because there may be more suggestions than before.
    void refreshOffers();
    void hideOffers();

signals:
    /// The user has chosen a suggestion; the edit shows its text.
    void sigChosen(int offer);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showOffers(const QString& typed);
    void choose(int row);

    Find m_find;
    Text m_text;
    std::vector<int> m_offers;
    QStringListModel* m_lines;
    QCompleter* m_completer;
};

} // namespace QAV
