// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tradelimit/CTradeLimitBook.h"

#include <QString>

namespace QAV
{

/// The maximum number of characters of a code and of a name.
constexpr int MaxSecurityCodeLength = 32;
constexpr int MaxSecurityNameLength = 64;

/// The mistake in a code without surrounding blanks; empty if there is none.
QString securityCodeProblem(const QString& code);

/// The text for an unknown code.
QString unknownSecurity(const QString& code);

/// Why the book refuses the entry, for the user; empty if it does not.
QString entryProblem(const CTradeLimitBook& book, const nvservice::CTradeLimitEntry& entry);

} // namespace QAV
