// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>
#include <vector>

namespace WQ
{

/// Something that a user can do with a cell or a column, by mouse, keyboard, menu or assistive technology.
struct TableAction {
    QString text;
    std::function<void()> run;
};

using TableActions = std::vector<TableAction>;

} // namespace WQ
