// SPDX-License-Identifier: Apache-2.0
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
    int weight;         ///< number of accounts out of a hundred
};

const std::vector<SampleAccountType>& sampleAccountTypes();

/// A name such as "量化对冲一号", different for each number.
std::string sampleStrategyName(int number);

/// 1 to 99 999 999 in Chinese numerals: 21 is 二十一.
std::string chineseNumeral(int number);

} // namespace service
