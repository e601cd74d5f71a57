#pragma once

#include "exempt/CategoryList.h"

#include <QString>

namespace QAV
{

/// What a category is found by: a part of its name or of the pinyin of its name, in any letter case.
class CCategorySearchKey
{
public:
    /// `category` may be null and is then never found.
    explicit CCategorySearchKey(const CategoryPtr& category);

    const CategoryPtr& category() const { return m_category; }
    const QString& name() const { return m_name; }
    /// @param foldedText  what the user typed, see foldCase(); an empty text finds everything
    bool contains(const QString& foldedText) const;

private:
    CategoryPtr m_category;
    QString m_name;
    QString m_foldedName;
    QString m_foldedPinyin;
};

/// Folds the letter case of each character by itself, as comparisons that ignore case do. The length stays.
QString foldCase(QString text);

} // namespace QAV
