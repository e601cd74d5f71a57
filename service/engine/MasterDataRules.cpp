// SPDX-License-Identifier: Apache-2.0
#include "service/engine/MasterDataRules.h"
#include "service/engine/TextRules.h"

#include <nvservice/CInstitutionInfo.h>
#include <nvservice/Codec.h>
#include <nvservice/NoInstitutionId.h>
#include <utils/Translation.h>

#include <QVector>

namespace service
{

std::string textProblem(const QString& text, const std::string& what, bool mayBeEmpty)
{
    if (mayBeEmpty && text.isEmpty()) {
        return {};
    }
    const std::string problem = visibleTextProblem(text);
    if (!problem.empty()) {
        return utils::filled(utils::text("service", "“%1”%2"), what, problem);
    }
    if (text.toUcs4().size() > MaxMasterDataTextLength) {
        return utils::filled(utils::text("service", "“%1”不能超过%2个字符"), what, MaxMasterDataTextLength);
    }
    return {};
}

std::optional<std::int32_t> masterDataNumber(const QString& text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!isNumber || number <= 0 || number == nvservice::NoInstitutionId) {
        return std::nullopt;
    }
    return number;
}

std::string institutionKey(const std::string& id)
{
    return "institution|" + id;
}

bson::BSONObj institutionDocument(const SubSystem& server, std::int32_t id, const std::string& name)
{
    nvservice::CInstitutionInfo info;
    info.institutionId = id;
    info.name = name;
    info.setSystemTag(server.systemTag);
    return nvservice::encodeRecord(info);
}

} // namespace service
