#pragma once

#include <WQ/Export.h>

namespace WQ
{

/// Told about every theme switch while it lives; it enrols itself. UI thread only.
class WQ_EXPORT CUiResourceChangeHandler
{
public:
    CUiResourceChangeHandler(const CUiResourceChangeHandler&) = delete;
    CUiResourceChangeHandler& operator=(const CUiResourceChangeHandler&) = delete;

    /// Called after CUiResourceManager answers with the new theme's colours and images. Fetch again what was fetched
    /// once; what is fetched while painting needs nothing. The base does nothing.
    virtual void onUiResourceChanged();

protected:
    CUiResourceChangeHandler();
    virtual ~CUiResourceChangeHandler();
};

} // namespace WQ
