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

/// A column whose value is one of a few.
struct AssetsChoiceColumn {
    EAssetsColumn column;
    const char* typeName; ///< as the type manager knows it
    std::vector<int> values;
    int (*get)(const nvservice::CAssetsRC&);
    void (*set)(nvservice::CAssetsRC&, int);
};

const std::vector<AssetsChoiceColumn>& assetsChoiceColumns();
/// Null when the column is none of them.
const AssetsChoiceColumn* assetsChoiceColumn(int column);

/// The user's word for a value; the number for one that this version does not know.
QString assetsChoiceName(const AssetsChoiceColumn& column, int value);
bool isKnownChoice(const AssetsChoiceColumn& column, int value);

} // namespace QAV
