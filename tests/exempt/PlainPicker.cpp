// SPDX-License-Identifier: Apache-2.0
#include "PlainPicker.h"

#include <WQ/Pinyin.h>
#include <WQ/StringConversion.h>

#include <algorithm>

namespace exempt_test
{

static QString nameOf(const QAV::CategoryPtr& category)
{
    return WQ::sToQs(category->categoryName);
}

static bool isFound(const QAV::CategoryPtr& category, const QString& text)
{
    std::vector<std::string> parts;
    WQ::getPy(parts, category->categoryName);
    QString key;
    for (const std::string& part : parts) {
        key += WQ::sToQs(part);
    }
    return text.isEmpty() || nameOf(category).contains(text, Qt::CaseInsensitive) ||
           key.contains(text, Qt::CaseInsensitive);
}

void PlainPicker::refresh()
{
    available.clear();
    availableRows.clear();
    selectedRows.clear();
    for (const QAV::CategoryPtr& category : *all) {
        if (!category) {
            continue;
        }
        if (std::find(selected.begin(), selected.end(), category) != selected.end()) {
            selectedRows << nameOf(category);
        } else if (isFound(category, searchText)) {
            availableRows << nameOf(category);
            available.push_back(category);
        }
    }
}

void PlainPicker::move(const QList<int>& positions, bool giveBack)
{
    QAV::CategoryList& sourceList = giveBack ? selected : available;
    QAV::CategoryList& targetList = giveBack ? available : selected;
    QStringList& sourceRows = giveBack ? selectedRows : availableRows;
    QStringList& targetRows = giveBack ? availableRows : selectedRows;
    if (positions.isEmpty()) {
        return;
    }
    int removed = 0;
    for (const int position : positions) {
        const QString text = sourceRows.takeAt(position - removed++);
        const auto found = std::find_if(sourceList.begin(), sourceList.end(), [&](const QAV::CategoryPtr& category) {
            return category && nameOf(category) == text;
        });
        targetList.push_back(found == sourceList.end() ? QAV::CategoryPtr() : *found);
        if (found != sourceList.end()) {
            sourceList.erase(found);
        }
        targetRows << QString();
    }
    int row = 0;
    for (const QAV::CategoryPtr& category : *all) {
        for (const QAV::CategoryPtr& entry : targetList) {
            if (category && entry == category) {
                if (row < targetRows.size()) {
                    targetRows[row] = nameOf(category);
                }
                ++row;
            }
        }
    }
}

} // namespace exempt_test
