// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// One e-mail rule: who gets an e-mail when a risk rule fires.
/// Key: "<system tag>|<rule kind>|<account key>|<rule key>".
class NVSERVICE_EXPORT CEmailRC : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::string ruleKind;                ///< "2" for rules of an account group
    std::string accountKey;              ///< for rules of a group: its decimal id
    std::string ruleKey;                 ///< the rule that fires; unique within kind and account key
    std::vector<std::string> recipients; ///< e-mail addresses
    std::string subject;                 ///< of the e-mail
    bool enabled = true;                 ///< false: switched off
};

} // namespace nvservice
