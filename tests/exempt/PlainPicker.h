// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exempt/CategoryList.h"

#include <QString>
#include <QStringList>

namespace exempt_test
{

/// What the picker does, written down as plain loops over lists, without any regard to speed: what the picker's result
/// is compared with. The two tables are lists of row texts.
struct PlainPicker {
    const QAV::CategoryList* all = nullptr;
    QAV::CategoryList available;
    QAV::CategoryList selected;
    QStringList availableRows;
    QStringList selectedRows;
    QString searchText;

    void refresh();
    /// @param positions  selected rows of the source table, ascending
    void move(const QList<int>& positions, bool giveBack);
};

} // namespace exempt_test
