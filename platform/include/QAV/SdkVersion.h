// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The version of the SDK that these headers belong to, "major.minor". The manifest of a plug-in contains the version
/// that the plug-in was built with. A client accepts a plug-in if the major version equals its own and the minor
/// version is not newer.
#define QAV_SDK_VERSION_MAJOR 2
#define QAV_SDK_VERSION_MINOR 1
#define QAV_SDK_VERSION "2.1"
