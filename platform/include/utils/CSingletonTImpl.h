// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/CSingletonT.h>

namespace utils
{

/// Include this only in the source file of the owning library that instantiates CSingletonT<T>.
template <typename T>
T* CSingletonT<T>::instance()
{
    static T* const object = new T;
    return object;
}

} // namespace utils
