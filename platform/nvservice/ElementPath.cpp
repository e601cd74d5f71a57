// SPDX-License-Identifier: Apache-2.0
#include "ElementPath.h"

#include "CharacterLength.h"

namespace nvservice
{

namespace
{

constexpr std::size_t longestShownName = 48;

} // namespace

std::string printableName(std::string_view name)
{
    std::string shown;
    while (!name.empty()) {
        if (shown.size() >= longestShownName) {
            shown += "...";
            break;
        }
        const std::size_t length = characterLength(name);
        const unsigned char first = static_cast<unsigned char>(name.front());
        if (length == 0 || first < 0x20U || first == 0x7FU) {
            shown += '?';
        } else {
            shown.append(name.substr(0, length));
        }
        name.remove_prefix(length == 0 ? 1 : length);
    }
    return shown;
}

} // namespace nvservice
