// SPDX-License-Identifier: Apache-2.0
#include "RefusedDocuments.h"

#include <nvservice/Codec.h>

#include <QtTest>

namespace refusals
{

void addColumns()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("field");
}

void row(const char* name, const bson::BSONObj& document, const char* field)
{
    QTest::newRow(name) << QByteArray(document.objdata(), document.objsize()) << QString(field);
}

void verifyRow()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, field);
    nvservice::IDataPtr record;
    const utils::NVError error =
        nvservice::decodeRecord(document.constData(), static_cast<std::size_t>(document.size()), record);
    QCOMPARE(error.code(), utils::EErrorCode::Malformed);
    QVERIFY2(QString::fromStdString(error.errorMsg()).endsWith("(字段 " + field + ")"), error.errorMsg().c_str());
    QVERIFY(!record);
}

bson::BSONObj group(const bson::BSONObj& fields)
{
    bson::BSONObjBuilder builder;
    builder.append("_type", "nvservice::CAccountGroup");
    builder.appendElements(fields);
    return builder.obj();
}

} // namespace refusals
