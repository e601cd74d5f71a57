// Any file is text or refused, and any text is records or refused. Records that are written again are read as they
// were.
#include "fuzz/Require.h"
#include "service/import/CsvReader.h"

namespace
{

/// The form that keeps blanks at the ends.
QString quoted(QString field)
{
    return QLatin1String("=\"") + field.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

QString writtenAgain(const std::vector<service::CsvRecord>& records)
{
    QString text;
    for (const service::CsvRecord& record : records) {
        QStringList fields;
        for (const QString& field : record.fields)
            fields << quoted(field);
        text += fields.join(QLatin1Char(',')) + QLatin1Char('\n');
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QString text;
    const utils::NVError unreadable =
        service::decodeCsvText(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)), text);
    if (!unreadable.isSuccess()) {
        REQUIRE(!unreadable.errorMsg().empty());
        return 0;
    }
    std::vector<service::CsvRecord> records;
    const utils::NVError broken = service::parseCsv(text, records);
    if (!broken.isSuccess()) {
        REQUIRE(!broken.errorMsg().empty());
        return 0;
    }
    int line = 0;
    for (const service::CsvRecord& record : records) {
        REQUIRE(record.line > line);
        REQUIRE(!record.fields.isEmpty());
        line = record.line;
    }
    std::vector<service::CsvRecord> again;
    REQUIRE(service::parseCsv(writtenAgain(records), again).isSuccess());
    REQUIRE(again.size() == records.size());
    for (std::size_t i = 0; i < records.size(); ++i)
        REQUIRE(again[i].fields == records[i].fields);
    return 0;
}
