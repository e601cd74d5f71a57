// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/EErrorCode.h>

namespace service
{

/// What logs, metrics and people call an error code.
struct ErrorCodeName {
    utils::EErrorCode code;
    const char* key;   ///< for programs: "permission_denied"
    const char* title; ///< for people: "无权限"
};

constexpr ErrorCodeName ErrorCodeNames[] = {{utils::EErrorCode::Success, "success", "成功"},
                                            {utils::EErrorCode::Failed, "failed", "失败"},
                                            {utils::EErrorCode::NotConnected, "not_connected", "未连接"},
                                            {utils::EErrorCode::DeadlineExceeded, "deadline_exceeded", "超时"},
                                            {utils::EErrorCode::Cancelled, "cancelled", "已取消"},
                                            {utils::EErrorCode::Malformed, "malformed", "格式错误"},
                                            {utils::EErrorCode::NotLoggedIn, "not_logged_in", "未登录"},
                                            {utils::EErrorCode::PermissionDenied, "permission_denied", "无权限"},
                                            {utils::EErrorCode::OutOfScope, "out_of_scope", "超出范围"},
                                            {utils::EErrorCode::NotFound, "not_found", "不存在"},
                                            {utils::EErrorCode::Conflict, "conflict", "冲突"},
                                            {utils::EErrorCode::Duplicate, "duplicate", "重复"},
                                            {utils::EErrorCode::InvalidValue, "invalid_value", "值无效"},
                                            {utils::EErrorCode::StorageFailure, "storage_failure", "存储失败"},
                                            {utils::EErrorCode::Unsupported, "unsupported", "不支持"},
                                            {utils::EErrorCode::ResourceExhausted, "resource_exhausted", "超出限制"}};

/// Of an unknown code that of `Failed`.
constexpr const ErrorCodeName& nameOfErrorCode(utils::EErrorCode code)
{
    for (const ErrorCodeName& name : ErrorCodeNames) {
        if (name.code == code) {
            return name;
        }
    }
    return ErrorCodeNames[1];
}

} // namespace service
