// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CEventDeliverer.h>

#include <utility>

namespace WQ
{

/// A QWidget subclass `Base` that receives the events of the controls below it.
template <class Base>
class CEventWidgetT : public Base, public CEventDeliverer
{
public:
    template <typename... Args>
    explicit CEventWidgetT(Args&&... args) : Base(std::forward<Args>(args)...)
    {
    }
};

} // namespace WQ
