// SPDX-License-Identifier: Apache-2.0
#include <utils/NVError.h>
#include <utils/Translation.h>

#include <QCoreApplication>

#include <utility>

namespace utils
{

namespace
{

constexpr const char* generalFailureText = QT_TRANSLATE_NOOP("utils", "操作失败");

} // namespace

NVError::NVError() = default;

NVError::NVError(EErrorCode code, std::string message) : m_code(code)
{
    if (code != EErrorCode::Success) {
        m_message = message.empty() ? text("utils", generalFailureText) : std::move(message);
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
