// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ClientTestRecords.h"
#include "support/TestProgram.h"
#include "support/UnexpectedLog.h"
#include "support/qav/CFakeTransport.h"
#include "support/qav/CReplyCollector.h"

#include <QAV/CKolmClientCenter.h>

#include <boost/make_shared.hpp>

#include <memory>

/// A test of the client of one server, whose answers the test gives.
class ClientTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_replies = {};
        m_log = std::make_unique<support::UnexpectedLog>();
        m_transport = boost::make_shared<support::CFakeTransport>();
        m_centre = std::make_unique<QAV::CKolmClientCenter>();
        QVERIFY(m_centre->addServer("深圳", "SZ", m_transport).isSuccess());
        m_client = m_centre->getClientByName("深圳");
    }

    void cleanup()
    {
        m_centre.reset();
        m_client.reset();
        m_transport.reset();
        m_log.reset();
    }

protected:
    /// Asks for the groups.
    void ask() { m_client->queryData_async(groupQuery(), m_replies.onQuery(), 0); }

    support::CReplyCollector m_replies;
    std::unique_ptr<support::UnexpectedLog> m_log;
    boost::shared_ptr<support::CFakeTransport> m_transport;
    std::unique_ptr<QAV::CKolmClientCenter> m_centre;
    boost::shared_ptr<QAV::CKolmClient> m_client;
};
