// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tradelimit/CTradeLimitRow.h"

#include <QUndoStack>

#include <functional>
#include <string>
#include <vector>

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

    explicit CTradeLimitBook(nvservice::EZvTraderType traderType) : m_traderType(traderType) {}

    void setListener(Listener listener) { m_listener = std::move(listener); }
    nvservice::EZvTraderType traderType() const { return m_traderType; }

    /// Replaces all entries and clears the undo stack.
    void load(const std::vector<nvservice::CTradeLimitEntry>& entries);
    std::vector<nvservice::CTradeLimitEntry> entries() const;
    const CTradeLimitRows& rows() const { return m_rows; }

    /// The entry of a security on either list; null if there is none. Codes that differ only in case mean the same
    /// security.
    const nvservice::CTradeLimitEntry* find(const std::string& securityCode) const;
    static std::string folded(const std::string& securityCode);

    /// Each call is one undo step with the name `text`, unless it changes nothing. Unknown ids are ignored.
    void append(const std::vector<nvservice::CTradeLimitEntry>& entries, const QString& text);
    void remove(const std::vector<int>& ids, const QString& text);
    void change(const std::vector<int>& ids, const std::function<void(nvservice::CTradeLimitEntry&)>& edit,
                const QString& text);
    QUndoStack& undoStack() { return m_undo; }

private:
    class CReplaceCommand;
    struct CodedRow {
        std::string code;
        const CTradeLimitRow* row;
    };

    CTradeLimitRows makeRows(const std::vector<nvservice::CTradeLimitEntry>& entries);
    /// The rows with these ids, in ascending order.
    CTradeLimitRows rowsOf(std::vector<int> ids) const;
    void indexCodes(const CTradeLimitRows& rows) const;
    void push(CTradeLimitRows before, CTradeLimitRows after, const QString& text);
    /// Removes the rows with the ids of `before` and inserts `after`, both in ascending order of their ids.
    void replace(const CTradeLimitRows& before, const CTradeLimitRows& after);

    nvservice::EZvTraderType m_traderType;
    CTradeLimitRows m_rows; ///< in ascending order of their ids
    int m_nextId = 0;
    /// Ordered by the folded code; empty until a security is looked up.
    mutable std::vector<CodedRow> m_rowsByCode;
    Listener m_listener;
    QUndoStack m_undo;
};

} // namespace QAV
