#include "OperationId.h"

#include <QUuid>

namespace QAV
{

std::string newOperationId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

} // namespace QAV
