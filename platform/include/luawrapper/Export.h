// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/qglobal.h>

#if defined(QAV_LUAWRAPPER_BUILD)
#define LUAWRAPPER_EXPORT Q_DECL_EXPORT
#else
#define LUAWRAPPER_EXPORT Q_DECL_IMPORT
#endif
