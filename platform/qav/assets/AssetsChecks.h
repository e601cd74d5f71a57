// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "assets/AssetsColumns.h"

namespace QAV
{

/// A mistake in a limit and its cell; an empty text means that there is none.
struct AssetsProblem {
    EAssetsColumn column = AssetsColumnCount;
    QString text;
};

/// The text of a threshold: the shortest one that means exactly this number.
QString thresholdText(double threshold);
/// Parses a threshold; accepts thousands separators, full-width digits and a percent sign.
bool parseThreshold(const QString& text, double& threshold);

/// @param typed  true: `text` is the user's threshold; false: the threshold of the record counts
AssetsProblem assetsProblem(const nvservice::CAssetsRC& limit, const QString& text, bool typed);

} // namespace QAV
