// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exempt/CategoryList.h"

#include <QString>

namespace QAV
{

/// The search key of a category. It is found by a part of its name or of the name's pinyin, in any letter case.
class CCategorySearchKey
{
public:
    /// `category` may be null; it is then never found.
    explicit CCategorySearchKey(const CategoryPtr& category);

    const CategoryPtr& category() const { return m_category; }
    const QString& name() const { return m_name; }
    /// @param foldedText  the user's input after foldCase(); an empty text matches everything
    bool contains(const QString& foldedText) const;

private:
    CategoryPtr m_category;
    QString m_name;
    QString m_foldedName;
    QString m_foldedPinyin;
};

/// Folds the case of each character separately, like a case-insensitive comparison. The length does not change.
QString foldCase(QString text);

} // namespace QAV
