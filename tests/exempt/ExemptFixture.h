// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exempt/CategoryList.h"

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

class QAbstractButton;
class QWidget;

namespace WQ
{
class CStandardSimpleTable;
}

namespace exempt_test
{

QAV::CategoryPtr makeCategory(int id, const std::string& name);
/// Categories with the ids 0, 1, 2, ... and these names.
QAV::CategoryList makeCategories(const std::vector<std::string>& names);
/// `count` categories whose names are made of a few hundred Chinese words and a number, all different.
QAV::CategoryList makeManyCategories(int count);

QStringList namesOf(const QAV::CategoryList& categories);
QList<int> idsOf(const QAV::CategoryList& categories);

WQ::CStandardSimpleTable* tableOf(const QWidget& root, int tableId);
/// What a table shows in a column, from top to bottom.
QStringList shown(const WQ::CStandardSimpleTable& table, int column = 0);
void select(WQ::CStandardSimpleTable& table, const QList<int>& positions);

/// The button or check box with this text; null if there is none.
QAbstractButton* buttonOf(const QWidget& root, const QString& text);
void click(const QWidget& root, const QString& text);

} // namespace exempt_test
