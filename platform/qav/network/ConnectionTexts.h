// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QSslError>
#include <QString>

#include <string>

class QSslSocket;

namespace QAV
{

/// Why a connection to `host` could not be made or was lost, for the user.
std::string connectionProblem(const QString& host, const QSslSocket& socket, const QList<QSslError>& certificateErrors);

} // namespace QAV
