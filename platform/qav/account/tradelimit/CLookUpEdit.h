#pragma once

#include <WQ/CLineEdit.h>

#include <functional>
#include <vector>

class QCompleter;
class QStringListModel;

namespace QAV
{

/// A line edit that offers, below itself, what the typed text could mean. Nothing is chosen by itself: Up and Down go
/// through the offers, Enter or a click takes one over. Enter without one is reported as by CLineEdit.
class CLookUpEdit : public WQ::CLineEdit
{
    Q_OBJECT

public:
    /// Offers for a typed text, best first, as numbers of the caller's.
    using Find = std::function<std::vector<int>(const QString& typed)>;
    /// What an offer is called, in the list and, once chosen, in the edit.
    using Text = std::function<QString(int offer)>;

    CLookUpEdit(int id, QWidget* parent);
    ~CLookUpEdit() override;

    void setSource(Find find, Text text);
    void setListName(const QString& accessibleName);
    /// Looks again for what is typed, when there may be more to offer than before.
    void refreshOffers();
    void hideOffers();

signals:
    /// The user took an offer; the edit shows its text.
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
