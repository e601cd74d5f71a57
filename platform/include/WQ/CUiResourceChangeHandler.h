// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

namespace WQ
{

/// Is notified of every theme change while it exists. It registers itself. UI thread only.
class WQ_EXPORT CUiResourceChangeHandler
{
public:
    CUiResourceChangeHandler(const CUiResourceChangeHandler&) = delete;
    CUiResourceChangeHandler& operator=(const CUiResourceChangeHandler&) = delete;

    /// Called when CUiResourceManager already returns the new theme's colours and images. Reload stored colours and
    /// images here; those that are read while painting need nothing. The base class does nothing.
    virtual void onUiResourceChanged();

protected:
    CUiResourceChangeHandler();
    virtual ~CUiResourceChangeHandler();
};

} // namespace WQ
