// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace behaviour
{

/// One row of the table of behaviours.
struct Row {
    int line = 0;
    QString text;
    QStringList sources; ///< "file:symbol", file from the root of the source tree
    QStringList tests;   ///< "program::function"
};

/// The rows of every table in a Markdown text; a row of another shape is a problem.
std::vector<Row> readRows(const QString& markdown, QStringList& problems);

/// What the rows are held against.
struct Tree {
    /// The text of a file from the root of the source tree; null if there is none.
    std::function<QString(const QString& file)> read;
    /// The source file of each test program that CTest runs, by program.
    QHash<QString, QString> programs;
    /// The texts that a user of the plug-in can read.
    QStringList userTexts;
};

/// What is wrong with the rows: no source or test, a file, symbol, program or function that does not exist, a program
/// that CTest does not run, a behaviour that is there twice, a text for the user that no row has.
QStringList problemsOf(const std::vector<Row>& rows, const Tree& tree);

/// The Chinese texts of a C++ source: in its string literals.
QStringList chineseTexts(const QString& source);

} // namespace behaviour
