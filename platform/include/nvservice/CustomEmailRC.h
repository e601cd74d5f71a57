// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CEmailRC.h>
#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// E-mail rules that are changed or deleted in one operation. Key: the system tag.
class NVSERVICE_EXPORT CustomEmailRC : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::vector<CEmailRC> emailRCs; ///< of one account or account group
};

} // namespace nvservice
