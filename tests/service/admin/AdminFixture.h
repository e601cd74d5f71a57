// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/ServiceFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

namespace testservice
{

/// What a run of the tool gave.
struct Outcome {
    int exitCode = -1; ///< -1: it crashed or did not end
    QString output;
    QString errors;

    QJsonDocument json() const { return QJsonDocument::fromJson(output.toUtf8()); }
    /// The element of a list whose `key` is `value`; empty without one.
    QJsonObject item(const char* key, const QJsonValue& value) const;
};

/// The tool, as built.
QString adminProgram();

/// Runs the tool with this standard input, as if `caller` had called it by sudo; without one, nobody has.
Outcome runAdmin(const QStringList& arguments, const QByteArray& input = {}, const QString& caller = {});
/// Who changes something by the tool, as the audit has it.
QString toolUser();
/// The same with "--as boss".
QString toolUserAsBoss();

/// The databases of a fixture, with the tool in another process.
class AdminFixture : public ServiceFixture
{
public:
    using ServiceFixture::ServiceFixture;
    /// As --store takes it.
    QString storeName() { return store().options().location; }
    /// Runs the tool on this store; `words` are separated by blanks.
    Outcome run(const QString& words, const QByteArray& input = {});
    Outcome run(const QStringList& arguments, const QByteArray& input = {});
    /// "login operation key outcome" of the latest audit rows, oldest first.
    QStringList audit(int count);
    /// A copy of the SQLite database that nobody has open.
    QString closedCopy(const char* name);
};

using AdminTest = support::FixtureTest<AdminFixture>;

void writeFile(const QString& name, const QByteArray& content);
QByteArray readFile(const QString& name);
/// What is in the folder of the file under its name and more.
QStringList beside(const QString& file);

} // namespace testservice

/// Compares exit codes and shows what the tool said when they differ.
#define COMPARE_EXIT(outcome, expected)                                                                                \
    do {                                                                                                               \
        const testservice::Outcome compared = (outcome);                                                               \
        if (compared.exitCode != (expected))                                                                           \
            qInfo("%s%s", qPrintable(compared.output), qPrintable(compared.errors));                                   \
        QCOMPARE(compared.exitCode, static_cast<int>(expected));                                                       \
    } while (false)

/// The same, and what the tool said has to contain `part`: its errors, or its output.
#define COMPARE_ERROR(outcome, expected, part) COMPARE_SAID(outcome, expected, errors, part)
#define COMPARE_OUTPUT(outcome, expected, part) COMPARE_SAID(outcome, expected, output, part)
#define COMPARE_SAID(outcome, expected, stream, part)                                                                  \
    do {                                                                                                               \
        const testservice::Outcome said = (outcome);                                                                   \
        COMPARE_EXIT(said, expected);                                                                                  \
        QVERIFY2(said.stream.contains(part), qPrintable(said.stream));                                                 \
    } while (false)
