// SPDX-License-Identifier: Apache-2.0
#include "Protocol.h"

#include "Messages.h"

#include <utils/Translation.h>

#include <algorithm>

namespace wire
{

namespace
{

std::string majorOf(const std::string& version)
{
    return version.substr(0, version.find('.'));
}

std::string range(std::int32_t oldest, std::int32_t newest)
{
    return oldest == newest ? std::to_string(oldest) : utils::filled(utils::text("wire", "%1 至 %2"), oldest, newest);
}

} // namespace

std::string sdkVersion()
{
    return QAV_SDK_VERSION;
}

utils::NVError chooseProtocol(const Hello& hello, std::int32_t& protocol)
{
    const std::int32_t newest = std::min(hello.newestProtocol, NewestProtocol);
    if (newest < OldestProtocol || newest < hello.oldestProtocol) {
        return {utils::EErrorCode::Unsupported,
                utils::filled(utils::text("wire", "通信协议版本不兼容: 服务端支持 %1, 客户端支持 %2"),
                              range(OldestProtocol, NewestProtocol),
                              range(hello.oldestProtocol, hello.newestProtocol))};
    }
    if (majorOf(hello.sdkVersion) != majorOf(sdkVersion())) {
        return {utils::EErrorCode::Unsupported,
                utils::filled(utils::text("wire", "SDK 版本不兼容: 服务端为 %1, 客户端为 %2"), sdkVersion(),
                              hello.sdkVersion)};
    }
    protocol = newest;
    return {};
}

} // namespace wire
