// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Installation.h"

namespace testservice
{

void storeGroups(ServiceFixture& fixture, int count)
{
    service::Connection& connection = fixture.store().connection();
    service::Transaction transaction(connection, service::Transaction::EKind::Write);
    const service::ServerData east{connection, fixture.server(0)};
    const auto row = service::findAccounts(east, {future("8001")})[0]->row;
    for (int i = 0; i < count; ++i) {
        auto record = group("组" + std::to_string(i), First, {future("8001")});
        record->groupId = service::takeGroupId(east);
        record->setRevision(1);
        service::insertGroup(east, *record, {row}, {"founder", 1000});
    }
    transaction.commit();
}

} // namespace testservice
