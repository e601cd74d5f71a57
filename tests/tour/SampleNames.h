// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// What the tours name of the sample data.
namespace tour
{

inline const QString Shanghai = QStringLiteral("上海分系统");
inline const QString Shenzhen = QStringLiteral("深圳分系统");
/// The institution that the user "bound" is bound to.
inline const QString Institution = QStringLiteral("砚池证券股份有限公司");
constexpr int InstitutionId = 1;

/// Account types, by their numbers in the database.
constexpr int Future = 1;
constexpr int Stock = 2;

} // namespace tour
