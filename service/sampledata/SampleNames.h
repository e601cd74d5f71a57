#pragma once

#include <nvservice/EZVBrokerType.h>

#include <string>
#include <vector>

namespace service
{

struct SampleServer {
    std::string name;
    std::string systemTag;
};

/// Server `index`, counted from 0.
SampleServer sampleServer(int index);

struct SampleInstitution {
    std::string name;
    std::string shortName;
};

const std::vector<SampleInstitution>& sampleInstitutions();

struct SampleAccountType {
    nvservice::EZVBrokerType type;
    std::string shortName;
    std::string prefix; ///< of account ids, with the leading zeros that such accounts have
    int weight;         ///< of a hundred accounts
};

const std::vector<SampleAccountType>& sampleAccountTypes();

/// "量化对冲一号" and the like; each number gives another name.
std::string sampleStrategyName(int number);

/// 1 to 99 999 999 in Chinese numerals: 21 is 二十一.
std::string chineseNumeral(int number);

} // namespace service
