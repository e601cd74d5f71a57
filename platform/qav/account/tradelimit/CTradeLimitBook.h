#pragma once

#include "account/tradelimit/CTradeLimitRow.h"

#include <QUndoStack>

#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

namespace QAV
{

/// The entries of one trade type in their order, and every change of them as one step that can be undone. Knows no
/// widgets.
class CTradeLimitBook
{
public:
    /// What has changed, for whoever shows the entries.
    struct Change {
        enum EKind {
            Appended,  ///< `rows` stand at the end
            Replaced,  ///< `rows` stand where the rows of the same ids stood
            Rearranged ///< anything else: all rows are to be taken anew
        };
        EKind kind = Rearranged;
        CTradeLimitRows rows;
    };
    using Listener = std::function<void(const Change&)>;
    using Placed = std::vector<std::pair<std::size_t, CTradeLimitRowPtr>>;

    explicit CTradeLimitBook(nvservice::EZvTraderType traderType);

    void setListener(Listener listener) { m_listener = std::move(listener); }
    nvservice::EZvTraderType traderType() const { return m_traderType; }

    /// Takes these entries in place of all others and forgets what could be undone.
    void load(const std::vector<nvservice::CTradeLimitEntry>& entries);
    std::vector<nvservice::CTradeLimitEntry> entries() const;
    const CTradeLimitRows& rows() const { return m_rows; }
    /// Null if there is no such row.
    CTradeLimitRowPtr row(int id) const;

    /// The entry of a security, whichever list it stands on; null if there is none. Codes that differ in case only are
    /// the same security.
    const nvservice::CTradeLimitEntry* find(const std::string& securityCode) const;
    static std::string folded(const std::string& securityCode);

    /// Each call is one step of the undo stack, named `text`; a call that changes nothing is none.
    void append(const std::vector<nvservice::CTradeLimitEntry>& entries, const QString& text);
    void remove(const std::vector<int>& ids, const QString& text);
    void change(const std::vector<int>& ids, const std::function<void(nvservice::CTradeLimitEntry&)>& edit,
                const QString& text);
    QUndoStack& undoStack() { return m_undo; }

    /// The steps themselves, for the undo commands.
    void appendRows(const CTradeLimitRows& rows);
    void insertRows(const Placed& placed);
    void removeRows(const Placed& placed);
    void replaceRows(const CTradeLimitRows& rows);

private:
    /// Place of the row, the number of rows if there is none. Ids ascend along the rows, whatever is undone.
    std::size_t placeOf(int id) const;
    void tell(Change::EKind kind, CTradeLimitRows rows = {}) const;

    nvservice::EZvTraderType m_traderType;
    CTradeLimitRows m_rows;
    int m_nextId = 0;
    /// Ids by folded code; made when first asked for.
    mutable std::unordered_map<std::string, int> m_idsByCode;
    mutable bool m_codesKnown = false;
    Listener m_listener;
    QUndoStack m_undo;
};

} // namespace QAV
