// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/RecordDiff.h"

#include <nvservice/EZvDataOperation.h>

#include <QColor>
#include <QString>

#include <map>

namespace QAV
{

/// The names of categories by id.
using CategoryNames = std::map<std::int32_t, QString>;

/// The area of a line: "黑白名单（证券）".
QString areaText(const DiffLine& line);
QString changeText(EChange change);
QColor changeColour(EChange change);
/// What a line shows of one of its two records. Empty without a record, or if the item is not in it.
QString valueText(const DiffLine& line, const nvservice::IData* record, int row, const CategoryNames& categories);

/// Milliseconds since 1970 UTC as local time, "2026-01-05 09:30:15".
QString timeText(std::int64_t at);
/// "李岚（lan）", or what is known of it.
QString userText(const std::string& userId, const std::string& userName);
QString operationText(nvservice::EZvDataOperation operation);
/// What an audit entry or a change is about: "风控配置".
QString dataTypeText(std::int32_t dataType);

} // namespace QAV
