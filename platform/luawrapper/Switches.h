// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <list>
#include <map>
#include <string>

namespace luawrapper
{

/// One switch and those below it.
struct Switch {
    bool on = false;
    std::map<std::string, Switch> children;
};

/// True if every key of the path is switched on, starting with the children of `root`.
bool isPathOn(const Switch& root, const std::list<std::string>& path);

} // namespace luawrapper
