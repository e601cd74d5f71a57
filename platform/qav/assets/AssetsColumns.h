// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAssetsRC.h>

#include <QString>

#include <vector>

namespace QAV
{

enum EAssetsColumn {
    AssetsEnabledColumn,
    AssetsScopeColumn,
    AssetsClassColumn,
    AssetsCategoryColumn,
    AssetsMeasuredColumn,
    AssetsBaseColumn,
    AssetsComparisonColumn,
    AssetsThresholdColumn,
    AssetsUnitColumn,
    AssetsActionColumn,
    AssetsRemarkColumn,
    AssetsRemoveColumn,
    AssetsColumnCount
};

QString assetsColumnName(int column);

/// A column with a fixed set of values.
struct AssetsChoiceColumn {
    EAssetsColumn column;
    const char* typeName; ///< for the type manager
    std::vector<int> values;
    int (*get)(const nvservice::CAssetsRC&);
    void (*set)(nvservice::CAssetsRC&, int);
};

const std::vector<AssetsChoiceColumn>& assetsChoiceColumns();
/// Null if the column has no fixed set of values.
const AssetsChoiceColumn* assetsChoiceColumn(int column);

/// The name of a value for the user; the number if the value is unknown.
QString assetsChoiceName(const AssetsChoiceColumn& column, int value);
bool isKnownChoice(const AssetsChoiceColumn& column, int value);

} // namespace QAV
