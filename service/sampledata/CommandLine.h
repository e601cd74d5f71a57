// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/sampledata/SampleData.h"

#include <QCommandLineOption>
#include <QList>

namespace service
{

/// An option of qav-sample-data that gives a number.
struct SampleAmount {
    const char* option;
    const char* description;
    int SampleOptions::* value;
};
const std::vector<SampleAmount>& sampleAmounts();

/// The options of the program. The help and the manual page are generated from them.
QList<QCommandLineOption> sampleDataOptions();

} // namespace service
