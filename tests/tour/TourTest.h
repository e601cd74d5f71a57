// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SampleNames.h"
#include "TourClient.h"
#include "support/TestProgram.h"

namespace tour
{

/// Matches a time in a text.
inline const QString Time = QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d");

/// A tour. A function fails if it leaves a logged warning or a row of the audit that nobody looked at.
class TourTest : public QObject
{
    Q_OBJECT

protected slots:
    void cleanup()
    {
        m_client->checkLog();
        QCOMPARE(database().newAudit(), QStringList());
    }
    void cleanupTestCase() { m_client.reset(); }

protected:
    /// Begins with the groups of Shanghai before the user who may do everything.
    void startAsAdmin(const QString& chapter)
    {
        m_client = std::make_unique<TourClient>(chapter);
        m_client->start("admin", "admin123");
        m_client->chooseServer(Shanghai);
    }
    TourDatabase& database() { return m_client->database(); }
    /// The id under which the service audits a group of Shanghai.
    QString key(const QString& group) { return QString("SH01|%1").arg(database().groupId(Shanghai, group)); }

    std::unique_ptr<TourClient> m_client;
};

} // namespace tour
