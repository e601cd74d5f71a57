// SPDX-License-Identifier: Apache-2.0
#include <utils/NVError.h>

#include <utility>

namespace utils
{

namespace
{

constexpr const char* generalFailureText = "操作失败";

} // namespace

NVError::NVError() = default;

NVError::NVError(EErrorCode code, std::string message) : m_code(code)
{
    if (code != EErrorCode::Success) {
        m_message = message.empty() ? std::string(generalFailureText) : std::move(message);
    }
}

bool NVError::isSuccess() const
{
    return m_code == EErrorCode::Success;
}

std::string NVError::errorMsg() const
{
    return m_message;
}

EErrorCode NVError::code() const
{
    return m_code;
}

} // namespace utils
