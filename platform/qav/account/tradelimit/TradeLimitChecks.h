#pragma once

#include "account/tradelimit/CTradeLimitBook.h"

#include <QString>

namespace QAV
{

/// Characters that a code and a name may have at most.
constexpr int MaxSecurityCodeLength = 32;
constexpr int MaxSecurityNameLength = 64;

/// What is wrong with a code or a name as the user gives it, without blanks at its ends; empty: nothing.
QString securityCodeProblem(const QString& code);
QString securityNameProblem(const QString& name);

/// The text for a code that no security has.
QString unknownSecurity(const QString& code);

/// Why the book does not take the entry, for the user; empty: it does.
QString entryProblem(const CTradeLimitBook& book, const nvservice::CTradeLimitEntry& entry);

} // namespace QAV
