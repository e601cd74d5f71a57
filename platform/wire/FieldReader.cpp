// SPDX-License-Identifier: Apache-2.0
#include "FieldReader.h"

#include "FieldNames.h"
#include "Protocol.h"

#include <utils/Translation.h>

#include <utility>

namespace wire
{

namespace
{

constexpr int LastKnownCode = static_cast<int>(utils::EErrorCode::ResourceExhausted);

} // namespace

void FieldReader::text(const char* name, std::string& value, std::size_t maxBytes)
{
    const bson::BSONElement element = m_document.getField(name);
    if (element.type() != bson::String) {
        refuse(name);
        return;
    }
    if (element.str().size() <= maxBytes) {
        value = element.str();
    } else {
        refuse(name);
    }
}

void FieldReader::error(utils::NVError& value)
{
    std::int32_t code = 0;
    std::string message;
    number(CodeField, code, 0);
    text(TextField, message, MaxTextBytes);
    const auto known = code <= LastKnownCode ? static_cast<utils::EErrorCode>(code) : utils::EErrorCode::Failed;
    value = utils::NVError(known, std::move(message));
}

bson::BSONObj FieldReader::document(const char* name)
{
    const bson::BSONElement element = m_document.getField(name);
    if (element.type() == bson::Object) {
        return element.embeddedObject();
    }
    refuse(name);
    return {};
}

void FieldReader::refuse(const char* name)
{
    refuse({utils::EErrorCode::Malformed, utils::filled(utils::text("wire", "通信数据格式错误: 字段 %1"), name)});
}

void FieldReader::refuse(utils::NVError error)
{
    if (m_error.isSuccess()) {
        m_error = std::move(error);
    }
}

} // namespace wire
