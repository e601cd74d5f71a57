// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The names of account types in the picker, and which types are offered to the user.
namespace QAV
{

/// Empty for a type without a name.
QString accountTypeName(int type);

/// True if the installation has the type's module and the user has the type's right. Types without a name, or without a
/// module and a right, are never offered.
bool isAccountTypeOffered(int type);

} // namespace QAV
