// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/qglobal.h>

#if defined(QAV_NVSERVICE_BUILD)
#define NVSERVICE_EXPORT Q_DECL_EXPORT
#else
#define NVSERVICE_EXPORT Q_DECL_IMPORT
#endif
