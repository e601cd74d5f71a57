#pragma once

#include <utils/EErrorCode.h>
#include <utils/Export.h>

#include <string>

namespace utils
{

/// The outcome of a call or request: success, or a code for the program and a text for the user.
/// A plain value; copies are independent, so it may be handed between threads by copy.
class UTILS_EXPORT NVError
{
public:
    /// Success, with an empty text.
    NVError();
    /// `message` is Chinese, UTF-8, and fit to be shown to the user as it is. A failure without a text gets a general
    /// one, so that a failed reply never reaches the user as an empty line; with `EErrorCode::Success` the text is
    /// dropped, because a success never has one.
    NVError(EErrorCode code, std::string message);

    bool isSuccess() const;
    /// Empty exactly when isSuccess().
    std::string errorMsg() const;
    EErrorCode code() const;

private:
    EErrorCode m_code = EErrorCode::Success;
    std::string m_message;
};

} // namespace utils
