#pragma once

#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// One e-mail rule: who is written to when a risk rule fires.
/// Key: "<system tag>|<rule kind>|<account key>|<rule key>".
class NVSERVICE_EXPORT CEmailRC : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::string ruleKind;   ///< "2" for rules of an account group
    std::string accountKey; ///< for rules of a group its decimal id
    std::string ruleKey;    ///< the rule that fires, unique within kind and account key
    std::vector<std::string> recipients;
    std::string subject;
    bool enabled = true;
};

} // namespace nvservice
