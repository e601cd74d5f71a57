#pragma once

#include <utils/CSingletonT.h>

namespace utils
{

/// For the one source file of the owning library that instantiates CSingletonT<T>; nobody else includes this.
template <typename T>
T* CSingletonT<T>::instance()
{
    static T* const object = new T;
    return object;
}

} // namespace utils
