#pragma once

#include <utils/Export.h>

namespace utils
{

/// The one object of class T in the process, shared by the client and every plug-in.
///
/// Users include this header only: `instance()` is declared here and defined in the library that owns T, so that no
/// plug-in ever grows an object of its own. The owning library includes <utils/CSingletonTImpl.h> in one source file
/// and instantiates: `template class QAV_EXPORT utils::CSingletonT<QAV::CUserManager>;` T is befriended (`friend class
/// utils::CSingletonT<T>;`) when its constructor is private.
template <typename T>
class Q_DECL_EXPORT CSingletonT
{
public:
    /// Never null. The object is made by the first call, whichever thread makes it, and lives until the process ends;
    /// its destructor never runs, so late callbacks and static destructors may still use it.
    static T* instance();
};

} // namespace utils
