// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/DataRows.h"
#include "support/Paths.h"

#include <QApplication>

namespace support
{

/// A number that the environment gives, or `otherwise`.
inline int setting(const char* variable, int otherwise)
{
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue(variable, &isGiven);
    return isGiven ? given : otherwise;
}

/// Runs one test as QTest::qExec does.
using TestFunction = int (*)(int argc, char** argv);

/// Makes a test known to the program that it is linked into: `<program> tst_name [options of Qt Test]` runs it.
class TestRegistration
{
public:
    /// The test is named as its source file is, without folder and suffix.
    TestRegistration(const char* sourceFile, TestFunction run);
};

template <class Test, class Application>
int runTest(int argc, char** argv)
{
    Application application(argc, argv);
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace support

#define TEST_WITH_WIDGETS(Test)                                                                                        \
    static const support::TestRegistration Test##Registration(__FILE__, support::runTest<Test, QApplication>);
#define TEST_WITHOUT_WIDGETS(Test)                                                                                     \
    static const support::TestRegistration Test##Registration(__FILE__, support::runTest<Test, QCoreApplication>);
