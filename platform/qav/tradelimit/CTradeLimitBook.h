// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tradelimit/CTradeLimitRow.h"

#include <QUndoStack>

#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

namespace QAV
{

/// The ordered entries of one trade type. Every change is one undo step. Independent of widgets.
class CTradeLimitBook
{
public:
    /// A change, for the view of the entries.
    struct Change {
        enum EKind {
            Appended,  ///< `rows` were appended
            Replaced,  ///< `rows` replace the rows with the same ids
            Rearranged ///< anything else: all rows must be read again
        };
        EKind kind = Rearranged;
        CTradeLimitRows rows;
    };
    using Listener = std::function<void(const Change&)>;
    using Placed = std::vector<std::pair<std::size_t, CTradeLimitRowPtr>>;

    explicit CTradeLimitBook(nvservice::EZvTraderType traderType);

    void setListener(Listener listener) { m_listener = std::move(listener); }
    nvservice::EZvTraderType traderType() const { return m_traderType; }

    /// Replaces all entries and clears the undo stack.
    void load(const std::vector<nvservice::CTradeLimitEntry>& entries);
    std::vector<nvservice::CTradeLimitEntry> entries() const;
    const CTradeLimitRows& rows() const { return m_rows; }
    /// Null if there is no such row.
    CTradeLimitRowPtr row(int id) const;

    /// The entry of a security on either list; null if there is none. Codes that differ only in case mean the same
    /// security.
    const nvservice::CTradeLimitEntry* find(const std::string& securityCode) const;
    static std::string folded(const std::string& securityCode);

    /// Each call is one undo step with the name `text`, unless it changes nothing.
    void append(const std::vector<nvservice::CTradeLimitEntry>& entries, const QString& text);
    void remove(const std::vector<int>& ids, const QString& text);
    void change(const std::vector<int>& ids, const std::function<void(nvservice::CTradeLimitEntry&)>& edit,
                const QString& text);
    QUndoStack& undoStack() { return m_undo; }

    /// For the undo commands: the changes themselves.
    void appendRows(const CTradeLimitRows& rows);
    void insertRows(const Placed& placed);
    void removeRows(const Placed& placed);
    void replaceRows(const CTradeLimitRows& rows);

private:
    /// The position of the row; the number of rows if there is none. Rows are always in ascending order of their ids.
    std::size_t placeOf(int id) const;
    void tell(Change::EKind kind, CTradeLimitRows rows = {}) const;

    nvservice::EZvTraderType m_traderType;
    CTradeLimitRows m_rows;
    int m_nextId = 0;
    /// Ids by folded code; built on first use.
    mutable std::unordered_map<std::string, int> m_idsByCode;
    mutable bool m_codesKnown = false;
    Listener m_listener;
    QUndoStack m_undo;
};

} // namespace QAV
