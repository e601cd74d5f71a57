// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/qglobal.h>

#if defined(QAV_WQ_BUILD)
#define WQ_EXPORT Q_DECL_EXPORT
#else
#define WQ_EXPORT Q_DECL_IMPORT
#endif
