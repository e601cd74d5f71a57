// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/qglobal.h>

#if defined(QAV_QAV_BUILD)
#define QAV_EXPORT Q_DECL_EXPORT
#else
#define QAV_EXPORT Q_DECL_IMPORT
#endif
