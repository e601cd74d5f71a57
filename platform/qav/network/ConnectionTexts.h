// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QSslError>
#include <QString>

class QSslSocket;

namespace QAV
{

/// Why a connection to `host` could not be made or was lost, for the user.
QString connectionProblem(const QString& host, const QSslSocket& socket, const QList<QSslError>& certificateErrors);

} // namespace QAV
