// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"
#include "support/TestProgram.h"
#include "support/records/DamagedRecords.h"

#include <nvservice/Codec.h>
#include <nvservice/SystemTag.h>

using namespace testservice;
namespace DataType = nvservice::DataType;

/// Requests in which a pointer is null, as a client in the same process can send them.
class NullPointersTest : public QObject
{
    Q_OBJECT

private slots:
    void whatTheRecordLibraryDoesWithARecordItDoesWithADamagedOne()
    {
        for (const support::SampleRecord& sample : support::damagedRecords()) {
            const nvservice::IDataPtr copy = sample.record->copy();
            QCOMPARE(copy->getKey(), sample.record->getKey());
            QCOMPARE(copy->getCsKey(), sample.record->getCsKey());
            nvservice::setSystemTagOfAll(*copy, "E");
            nvservice::addMissingSystemTags(*copy, "W");
            QCOMPARE(copy->getSystemTag(), std::string("E"));
            nvservice::IDataPtr decoded;
            QVERIFY2(nvservice::decodeRecord(nvservice::encodeRecord(*copy), decoded).isSuccess(),
                     qPrintable(sample.name));
        }
    }

    void aDamagedRecordIsRefusedWhateverIsToBeDoneWithIt()
    {
        ServiceFixture fixture;
        const GroupPtr stored = fixture.storedGroup("组");
        QVERIFY(!support::damagedRecords().empty());
        for (const support::SampleRecord& sample : support::damagedRecords()) {
            if (const auto group = boost::dynamic_pointer_cast<CAccountGroup>(sample.record)) {
                group->groupId = stored->groupId;
                group->setRevision(stored->revision());
            }
            for (const int dataType :
                 {DataType::Category, DataType::AccountGroup, DataType::GroupRiskConfig, DataType::Account,
                  DataType::Product, DataType::Institution, DataType::Security, DataType::EmailRule}) {
                for (const int operation : {0, 1, 2, 3}) {
                    const auto reply =
                        fixture.operateOn(dataType, static_cast<EZvDataOperation>(operation), sample.record);
                    QVERIFY2(!reply.error.isSuccess(), qPrintable(sample.name));
                }
            }
        }
        QCOMPARE(groupNames(fixture.query(DataType::AccountGroup)), std::vector<std::string>{"组"});
    }
};

TEST_WITHOUT_WIDGETS(NullPointersTest)
#include "tst_engine_null_pointers.moc"
