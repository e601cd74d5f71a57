// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/EErrorCode.h>
#include <utils/Export.h>

#include <string>

namespace utils
{

/// The outcome of a call or request: success, or an error code for programs with a text for the user.
/// A plain value. Copies are independent, so it can be passed between threads by copy.
class UTILS_EXPORT NVError
{
public:
    /// Success, with an empty text.
    NVError();
    /// `message` is Chinese UTF-8 text that can be shown to the user as it is. If it is empty, an error gets a general
    /// text, so that a failure is never shown as an empty line. With `EErrorCode::Success` the text is dropped.
    NVError(EErrorCode code, std::string message);

    bool isSuccess() const;
    /// Empty exactly if isSuccess().
    std::string errorMsg() const;
    EErrorCode code() const;

private:
    EErrorCode m_code = EErrorCode::Success;
    std::string m_message;
};

} // namespace utils
