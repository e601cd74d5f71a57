// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/EZVBrokerType.h>
#include <nvservice/EZvTraderType.h>

#include <QString>

#include <optional>
#include <string>

namespace service
{

// Values of CSV files. What is written can be read again; reading gives nothing for a text that stands for no value.

/// 0 or 1, 是 or 否, yes or no, true or false; empty means no.
std::optional<bool> readFlag(const QString& text);
std::string textOfFlag(bool flag);

/// The state of an account: a number, 正常 (0) or 已销户 (closed); empty means 0.
std::optional<int> readState(const QString& text);
std::string textOfState(int state);

/// The code or the name of a known type.
std::optional<nvservice::EZVBrokerType> readAccountType(const QString& text);

/// A single bit or a name; 0, 任意 and an empty text mean any.
std::optional<nvservice::EZvTraderType> readTraderType(const QString& text);
std::string textOfTraderType(nvservice::EZvTraderType type);

} // namespace service
