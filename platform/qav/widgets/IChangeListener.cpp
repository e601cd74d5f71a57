// SPDX-License-Identifier: Apache-2.0
#include <QAV/IChangeListener.h>

namespace QAV
{

IChangeListener::~IChangeListener() = default;

} // namespace QAV
