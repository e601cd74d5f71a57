// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Export.h>

namespace utils
{

/// The only object of class T in the process, shared by the client and all plug-ins.
///
/// Users include only this header. `instance()` is declared here and defined in the library that owns T, so a plug-in
/// never creates an object of its own. The owning library includes <utils/CSingletonTImpl.h> in one source file and
/// instantiates the template: `template class QAV_EXPORT utils::CSingletonT<QAV::CUserManager>;`. If the constructor of
/// T is private, T must declare `friend class utils::CSingletonT<T>;`.
template <typename T>
class Q_DECL_EXPORT CSingletonT
{
public:
    /// Never null. The first call creates the object. May be called from any thread. The object is never destroyed, so
    /// late callbacks and static destructors may still use it.
    static T* instance();
};

} // namespace utils
