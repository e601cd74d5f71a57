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

/// Whether every key of the path is switched on, from the children of `root` downwards.
bool isPathOn(const Switch& root, const std::list<std::string>& path);

} // namespace luawrapper
