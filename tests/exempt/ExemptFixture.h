// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exempt/CategoryList.h"

#include "support/wq/Widgets.h"

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace exempt_test
{

using support::buttonOf;
using support::clickButton;
using support::shown;

QAV::CategoryPtr makeCategory(int id, const std::string& name);
/// Categories with the ids 0, 1, 2, ... and these names.
QAV::CategoryList makeCategories(const std::vector<std::string>& names);
/// `count` categories whose names are made of a few hundred Chinese words and a number, all different.
QAV::CategoryList makeManyCategories(int count);

QStringList namesOf(const QAV::CategoryList& categories);
QList<int> idsOf(const QAV::CategoryList& categories);

WQ::CStandardSimpleTable* tableOf(const QWidget& root, int tableId);
void select(WQ::CStandardSimpleTable& table, const QList<int>& positions);

} // namespace exempt_test
