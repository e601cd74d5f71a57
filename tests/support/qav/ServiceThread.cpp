// SPDX-License-Identifier: Apache-2.0
#include "support/qav/ServiceThread.h"

#include "support/qav/Client.h"

#include <QCoreApplication>

#include <boost/make_shared.hpp>

#include <future>

namespace support
{

void awaitCallbacks()
{
    // Callbacks come one after the other on one thread: one more request is answered after all that came before.
    std::promise<void> passed;
    centre().getClientByName("nobody")->queryData_async(
        boost::make_shared<nvservice::CKolmQueryDataReq>(),
        [&](const utils::NVError&, const std::vector<nvservice::IDataPtr>&, int, bson::BSONObj) { passed.set_value(); },
        0);
    passed.get_future().wait();
}

void settleCallbacks()
{
    awaitCallbacks();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace support
