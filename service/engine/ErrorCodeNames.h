// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/EErrorCode.h>

#include <QCoreApplication>

namespace service
{

/// What logs, metrics and people call an error code.
struct ErrorCodeName {
    utils::EErrorCode code;
    const char* key;   ///< for programs: "permission_denied"
    const char* title; ///< for people, to be translated: "无权限"
};

constexpr ErrorCodeName ErrorCodeNames[] = {
    {utils::EErrorCode::Success, "success", QT_TRANSLATE_NOOP("service", "成功")},
    {utils::EErrorCode::Failed, "failed", QT_TRANSLATE_NOOP("service", "失败")},
    {utils::EErrorCode::NotConnected, "not_connected", QT_TRANSLATE_NOOP("service", "未连接")},
    {utils::EErrorCode::DeadlineExceeded, "deadline_exceeded", QT_TRANSLATE_NOOP("service", "超时")},
    {utils::EErrorCode::Cancelled, "cancelled", QT_TRANSLATE_NOOP("service", "已取消")},
    {utils::EErrorCode::Malformed, "malformed", QT_TRANSLATE_NOOP("service", "格式错误")},
    {utils::EErrorCode::NotLoggedIn, "not_logged_in", QT_TRANSLATE_NOOP("service", "未登录")},
    {utils::EErrorCode::PermissionDenied, "permission_denied", QT_TRANSLATE_NOOP("service", "无权限")},
    {utils::EErrorCode::OutOfScope, "out_of_scope", QT_TRANSLATE_NOOP("service", "超出范围")},
    {utils::EErrorCode::NotFound, "not_found", QT_TRANSLATE_NOOP("service", "不存在")},
    {utils::EErrorCode::Conflict, "conflict", QT_TRANSLATE_NOOP("service", "冲突")},
    {utils::EErrorCode::Duplicate, "duplicate", QT_TRANSLATE_NOOP("service", "重复")},
    {utils::EErrorCode::InvalidValue, "invalid_value", QT_TRANSLATE_NOOP("service", "值无效")},
    {utils::EErrorCode::StorageFailure, "storage_failure", QT_TRANSLATE_NOOP("service", "存储失败")},
    {utils::EErrorCode::Unsupported, "unsupported", QT_TRANSLATE_NOOP("service", "不支持")},
    {utils::EErrorCode::ResourceExhausted, "resource_exhausted", QT_TRANSLATE_NOOP("service", "超出限制")}};

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
