// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/EZvTraderType.h>
#include <nvservice/IData.h>

#include <string>

namespace nvservice
{

/// A security that can be put on a black or white list. Key: "<system tag>|<market>|<security code>".
class NVSERVICE_EXPORT CSecurityInfo : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::string securityCode; ///< leading zeros count
    std::string securityName;
    std::string market;       ///< the market's short name, for example "SH"; two markets may share a code
    std::int32_t sysType = 0; ///< the system type, as in CCategoryInfo
    EZvTraderType traderType = EZvTraderType::None; ///< the trade type that it belongs to; None: any
};

} // namespace nvservice
