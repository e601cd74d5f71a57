#pragma once

#include <QString>

/// The account types that the picker knows by name, and who may be offered their accounts.
namespace QAV
{

/// Empty for a type that has no name.
QString accountTypeName(int type);

/// True when the installation has the type's module and then the user has the type's right. Types that have a name
/// but neither module nor right belonging to them are offered to nobody, and so are types without a name.
bool isAccountTypeOffered(int type);

} // namespace QAV
