// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BsonJson.h"

#include <QJsonDocument>

#include <bson/bson.h>

#include <memory>

namespace service
{

QJsonObject documentJson(const bson::BSONObj& document)
{
    bson_t view;
    if (!bson_init_static(&view, reinterpret_cast<const std::uint8_t*>(document.objdata()),
                          static_cast<std::size_t>(document.objsize()))) {
        return {};
    }
    const std::unique_ptr<char, decltype(&bson_free)> json(bson_as_relaxed_extended_json(&view, nullptr), &bson_free);
    return QJsonDocument::fromJson(json.get()).object();
}

} // namespace service
