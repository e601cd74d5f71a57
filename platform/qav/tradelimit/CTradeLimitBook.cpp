// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CTradeLimitBook.h"

#include <QByteArray>
#include <QUndoCommand>

#include <boost/make_shared.hpp>

#include <algorithm>

namespace QAV
{

namespace
{

bool hasLowerId(const CTradeLimitRowPtr& a, const CTradeLimitRowPtr& b)
{
    return a->id() < b->id();
}

bool haveSameId(const CTradeLimitRowPtr& a, const CTradeLimitRowPtr& b)
{
    return a->id() == b->id();
}

bool areEqual(const nvservice::CTradeLimitEntry& a, const nvservice::CTradeLimitEntry& b)
{
    return a.listKind == b.listKind && a.direction == b.direction && a.securityCode == b.securityCode &&
           a.securityName == b.securityName;
}

} // namespace

class CTradeLimitBook::CReplaceCommand : public QUndoCommand
{
public:
    CReplaceCommand(CTradeLimitBook& book, CTradeLimitRows before, CTradeLimitRows after, const QString& text)
        : QUndoCommand(text), m_book(book), m_before(std::move(before)), m_after(std::move(after))
    {
    }
    void redo() override { m_book.replace(m_before, m_after); }
    void undo() override { m_book.replace(m_after, m_before); }

private:
    CTradeLimitBook& m_book;
    const CTradeLimitRows m_before;
    const CTradeLimitRows m_after;
};

void CTradeLimitBook::load(const std::vector<nvservice::CTradeLimitEntry>& entries)
{
    m_undo.clear();
    m_rows = makeRows(entries);
    m_rowsByCode.clear();
    if (m_listener) {
        m_listener({});
    }
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

std::string CTradeLimitBook::folded(const std::string& securityCode)
{
    return QByteArray::fromStdString(securityCode).toUpper().toStdString();
}

const nvservice::CTradeLimitEntry* CTradeLimitBook::find(const std::string& securityCode) const
{
    if (m_rowsByCode.empty()) {
        indexCodes(m_rows);
    }
    const std::string code = folded(securityCode);
    const auto found =
        std::lower_bound(m_rowsByCode.begin(), m_rowsByCode.end(), code,
                         [](const CodedRow& row, const std::string& wanted) { return row.code < wanted; });
    return found == m_rowsByCode.end() || found->code != code ? nullptr : &found->row->entry();
}

void CTradeLimitBook::indexCodes(const CTradeLimitRows& rows) const
{
    const auto hasLowerCode = [](const CodedRow& a, const CodedRow& b) { return a.code < b.code; };
    const auto known = static_cast<std::ptrdiff_t>(m_rowsByCode.size());
    m_rowsByCode.reserve(m_rowsByCode.size() + rows.size());
    for (const CTradeLimitRowPtr& row : rows) {
        m_rowsByCode.push_back({folded(row->entry().securityCode), row.get()});
    }
    // Both keep the order of equal codes, of which the first row is found.
    std::stable_sort(m_rowsByCode.begin() + known, m_rowsByCode.end(), hasLowerCode);
    std::inplace_merge(m_rowsByCode.begin(), m_rowsByCode.begin() + known, m_rowsByCode.end(), hasLowerCode);
}

void CTradeLimitBook::append(const std::vector<nvservice::CTradeLimitEntry>& entries, const QString& text)
{
    push({}, makeRows(entries), text);
}

void CTradeLimitBook::remove(const std::vector<int>& ids, const QString& text)
{
    push(rowsOf(ids), {}, text);
}

void CTradeLimitBook::change(const std::vector<int>& ids, const std::function<void(nvservice::CTradeLimitEntry&)>& edit,
                             const QString& text)
{
    CTradeLimitRows before;
    CTradeLimitRows after;
    for (const CTradeLimitRowPtr& row : rowsOf(ids)) {
        nvservice::CTradeLimitEntry entry = row->entry();
        edit(entry);
        if (!areEqual(entry, row->entry())) {
            before.push_back(row);
            after.push_back(boost::make_shared<CTradeLimitRow>(row->id(), std::move(entry), m_traderType));
        }
    }
    push(std::move(before), std::move(after), text);
}

CTradeLimitRows CTradeLimitBook::makeRows(const std::vector<nvservice::CTradeLimitEntry>& entries)
{
    CTradeLimitRows rows;
    rows.reserve(entries.size());
    for (const nvservice::CTradeLimitEntry& entry : entries) {
        rows.push_back(boost::make_shared<CTradeLimitRow>(m_nextId++, entry, m_traderType));
    }
    return rows;
}

CTradeLimitRows CTradeLimitBook::rowsOf(std::vector<int> ids) const
{
    std::sort(ids.begin(), ids.end());
    CTradeLimitRows rows;
    std::copy_if(m_rows.begin(), m_rows.end(), std::back_inserter(rows),
                 [&](const CTradeLimitRowPtr& row) { return std::binary_search(ids.begin(), ids.end(), row->id()); });
    return rows;
}

void CTradeLimitBook::push(CTradeLimitRows before, CTradeLimitRows after, const QString& text)
{
    if (!before.empty() || !after.empty()) {
        m_undo.push(new CReplaceCommand(*this, std::move(before), std::move(after), text));
    }
}

void CTradeLimitBook::replace(const CTradeLimitRows& before, const CTradeLimitRows& after)
{
    Change change;
    if (before.empty() && (m_rows.empty() || hasLowerId(m_rows.back(), after.front()))) {
        change = {Change::Appended, after};
    } else if (std::equal(before.begin(), before.end(), after.begin(), after.end(), haveSameId)) {
        change = {Change::Replaced, after};
    }
    CTradeLimitRows kept;
    std::set_difference(m_rows.begin(), m_rows.end(), before.begin(), before.end(), std::back_inserter(kept),
                        hasLowerId);
    m_rows.clear();
    std::merge(kept.begin(), kept.end(), after.begin(), after.end(), std::back_inserter(m_rows), hasLowerId);
    if (change.kind != Change::Appended) {
        m_rowsByCode.clear();
    } else if (!m_rowsByCode.empty()) {
        indexCodes(after);
    }
    if (m_listener) {
        m_listener(change);
    }
}

} // namespace QAV
