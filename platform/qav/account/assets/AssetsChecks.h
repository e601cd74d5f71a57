#pragma once

#include "account/assets/AssetsColumns.h"

namespace QAV
{

/// What is wrong with a limit, and in which cell; an empty text: nothing.
struct AssetsProblem {
    EAssetsColumn column = AssetsColumnCount;
    QString text;
};

/// A threshold as the user reads it: the shortest text of the very number.
QString thresholdText(double threshold);
/// A threshold as people write it: thousands separators, full-width digits and a percent sign are understood.
bool parseThreshold(const QString& text, double& threshold);

/// @param typed  whether `text` is what the user made of the threshold; otherwise the record's own counts
AssetsProblem assetsProblem(const nvservice::CAssetsRC& limit, const QString& text, bool typed);

} // namespace QAV
