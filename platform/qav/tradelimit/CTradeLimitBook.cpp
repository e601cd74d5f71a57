// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CTradeLimitBook.h"

#include <QUndoCommand>

#include <boost/make_shared.hpp>

#include <algorithm>

namespace QAV
{

namespace
{

class CAppendCommand : public QUndoCommand
{
public:
    CAppendCommand(CTradeLimitBook& book, CTradeLimitRows rows, const QString& text)
        : QUndoCommand(text), m_book(book), m_rows(std::move(rows))
    {
    }
    void redo() override { m_book.appendRows(m_rows); }
    void undo() override
    {
        CTradeLimitBook::Placed placed;
        for (const CTradeLimitRowPtr& row : m_rows) {
            placed.emplace_back(0, row);
        }
        m_book.removeRows(placed);
    }

private:
    CTradeLimitBook& m_book;
    CTradeLimitRows m_rows;
};

class CRemoveCommand : public QUndoCommand
{
public:
    CRemoveCommand(CTradeLimitBook& book, CTradeLimitBook::Placed placed, const QString& text)
        : QUndoCommand(text), m_book(book), m_placed(std::move(placed))
    {
    }
    void redo() override { m_book.removeRows(m_placed); }
    void undo() override { m_book.insertRows(m_placed); }

private:
    CTradeLimitBook& m_book;
    CTradeLimitBook::Placed m_placed;
};

class CChangeCommand : public QUndoCommand
{
public:
    CChangeCommand(CTradeLimitBook& book, CTradeLimitRows before, CTradeLimitRows after, const QString& text)
        : QUndoCommand(text), m_book(book), m_before(std::move(before)), m_after(std::move(after))
    {
    }
    void redo() override { m_book.replaceRows(m_after); }
    void undo() override { m_book.replaceRows(m_before); }

private:
    CTradeLimitBook& m_book;
    CTradeLimitRows m_before;
    CTradeLimitRows m_after;
};

} // namespace

CTradeLimitBook::CTradeLimitBook(nvservice::EZvTraderType traderType) : m_traderType(traderType) {}

void CTradeLimitBook::load(const std::vector<nvservice::CTradeLimitEntry>& entries)
{
    m_undo.clear();
    m_rows.clear();
    m_rows.reserve(entries.size());
    for (const nvservice::CTradeLimitEntry& entry : entries) {
        m_rows.push_back(boost::make_shared<CTradeLimitRow>(m_nextId++, entry, m_traderType));
    }
    m_codesKnown = false;
    tell(Change::Rearranged);
}

std::vector<nvservice::CTradeLimitEntry> CTradeLimitBook::entries() const
{
    std::vector<nvservice::CTradeLimitEntry> entries;
    entries.reserve(m_rows.size());
    for (const CTradeLimitRowPtr& row : m_rows) {
        entries.push_back(row->entry());
    }
    return entries;
}

CTradeLimitRowPtr CTradeLimitBook::row(int id) const
{
    const std::size_t place = placeOf(id);
    return place < m_rows.size() ? m_rows[place] : CTradeLimitRowPtr();
}

std::size_t CTradeLimitBook::placeOf(int id) const
{
    const auto place = std::lower_bound(m_rows.begin(), m_rows.end(), id,
                                        [](const CTradeLimitRowPtr& row, int wanted) { return row->id() < wanted; });
    return place != m_rows.end() && (*place)->id() == id ? std::size_t(place - m_rows.begin()) : m_rows.size();
}

std::string CTradeLimitBook::folded(const std::string& securityCode)
{
    std::string result = securityCode;
    for (char& letter : result) {
        if (letter >= 'a' && letter <= 'z') {
            letter = char(letter - 'a' + 'A');
        }
    }
    return result;
}

const nvservice::CTradeLimitEntry* CTradeLimitBook::find(const std::string& securityCode) const
{
    if (!m_codesKnown) {
        m_idsByCode.clear();
        m_idsByCode.reserve(m_rows.size());
        for (const CTradeLimitRowPtr& row : m_rows) {
            m_idsByCode.emplace(folded(row->entry().securityCode), row->id());
        }
        m_codesKnown = true;
    }
    const auto found = m_idsByCode.find(folded(securityCode));
    return found == m_idsByCode.end() ? nullptr : &m_rows[placeOf(found->second)]->entry();
}

void CTradeLimitBook::append(const std::vector<nvservice::CTradeLimitEntry>& entries, const QString& text)
{
    if (entries.empty()) {
        return;
    }
    CTradeLimitRows rows;
    rows.reserve(entries.size());
    for (const nvservice::CTradeLimitEntry& entry : entries) {
        rows.push_back(boost::make_shared<CTradeLimitRow>(m_nextId++, entry, m_traderType));
    }
    m_undo.push(new CAppendCommand(*this, std::move(rows), text));
}

void CTradeLimitBook::remove(const std::vector<int>& ids, const QString& text)
{
    Placed placed;
    for (const int id : ids) {
        const std::size_t place = placeOf(id);
        if (place < m_rows.size()) {
            placed.emplace_back(place, m_rows[place]);
        }
    }
    std::sort(placed.begin(), placed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    placed.erase(std::unique(placed.begin(), placed.end()), placed.end());
    if (!placed.empty()) {
        m_undo.push(new CRemoveCommand(*this, std::move(placed), text));
    }
}

void CTradeLimitBook::change(const std::vector<int>& ids, const std::function<void(nvservice::CTradeLimitEntry&)>& edit,
                             const QString& text)
{
    CTradeLimitRows before;
    CTradeLimitRows after;
    for (const int id : ids) {
        const CTradeLimitRowPtr old = row(id);
        if (!old) {
            continue;
        }
        nvservice::CTradeLimitEntry entry = old->entry();
        edit(entry);
        if (entry.listKind == old->entry().listKind && entry.direction == old->entry().direction &&
            entry.securityCode == old->entry().securityCode && entry.securityName == old->entry().securityName) {
            continue;
        }
        before.push_back(old);
        after.push_back(boost::make_shared<CTradeLimitRow>(id, std::move(entry), m_traderType));
    }
    if (!after.empty()) {
        m_undo.push(new CChangeCommand(*this, std::move(before), std::move(after), text));
    }
}

void CTradeLimitBook::appendRows(const CTradeLimitRows& rows)
{
    m_rows.insert(m_rows.end(), rows.begin(), rows.end());
    if (m_codesKnown) {
        for (const CTradeLimitRowPtr& row : rows) {
            m_idsByCode.emplace(folded(row->entry().securityCode), row->id());
        }
    }
    tell(Change::Appended, rows);
}

void CTradeLimitBook::insertRows(const Placed& placed)
{
    CTradeLimitRows rows;
    rows.reserve(m_rows.size() + placed.size());
    auto old = m_rows.begin();
    for (const auto& [place, row] : placed) {
        const auto gap = std::ptrdiff_t(place - rows.size());
        rows.insert(rows.end(), old, old + gap);
        old += gap;
        rows.push_back(row);
    }
    rows.insert(rows.end(), old, m_rows.end());
    m_rows.swap(rows);
    m_codesKnown = false;
    tell(Change::Rearranged);
}

void CTradeLimitBook::removeRows(const Placed& placed)
{
    // Both run along ascending ids.
    auto gone = placed.begin();
    m_rows.erase(std::remove_if(m_rows.begin(), m_rows.end(),
                                [&](const CTradeLimitRowPtr& row) {
                                    if (gone == placed.end() || gone->second->id() != row->id()) {
                                        return false;
                                    }
                                    ++gone;
                                    return true;
                                }),
                 m_rows.end());
    m_codesKnown = false;
    tell(Change::Rearranged);
}

void CTradeLimitBook::replaceRows(const CTradeLimitRows& rows)
{
    for (const CTradeLimitRowPtr& row : rows) {
        m_rows[placeOf(row->id())] = row;
    }
    m_codesKnown = false;
    tell(Change::Replaced, rows);
}

void CTradeLimitBook::tell(Change::EKind kind, CTradeLimitRows rows) const
{
    if (m_listener) {
        m_listener({kind, std::move(rows)});
    }
}

} // namespace QAV
