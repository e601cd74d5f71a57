#pragma once

/// The version of the SDK that these headers belong to, "major.minor". A plug-in's manifest names the version that the
/// plug-in was built with. A client accepts a plug-in of its own major version whose minor version is not above its
/// own.
#define QAV_SDK_VERSION_MAJOR 1
#define QAV_SDK_VERSION_MINOR 0
#define QAV_SDK_VERSION "1.0"
