// SPDX-License-Identifier: Apache-2.0
#include "centre/OperationId.h"

#include <QUuid>

namespace QAV
{

std::string newOperationId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

} // namespace QAV
