// SPDX-License-Identifier: Apache-2.0
#include "BehaviourTable.h"

#include <QRegularExpression>
#include <QSet>

namespace behaviour
{

namespace
{

/// What stands between backticks.
QStringList quoted(const QString& cell)
{
    static const QRegularExpression inBackticks(QStringLiteral("`([^`]+)`"));
    QStringList texts;
    for (auto match = inBackticks.globalMatch(cell); match.hasNext();) {
        texts << match.next().captured(1);
    }
    return texts;
}

bool hasWord(const QString& text, const QString& word)
{
    const QRegularExpression whole(
        QStringLiteral("(?<![A-Za-z0-9_])%1(?![A-Za-z0-9_])").arg(QRegularExpression::escape(word)));
    return text.contains(whole);
}

/// A Qt Test program runs what is both a slot of its class and defined.
bool hasTestFunction(const QString& source, const QString& function)
{
    const QString name = QRegularExpression::escape(function);
    static const QString slot = QStringLiteral("\\n    void %1\\(\\)(;| \\{|\\n    \\{)");
    static const QString definition = QStringLiteral("\\nvoid \\w+::%1\\(\\)\\n\\{");
    const QRegularExpressionMatch declared = QRegularExpression(slot.arg(name)).match(source);
    if (!declared.hasMatch()) {
        return false;
    }
    // The access section that the declaration stands in.
    static const QRegularExpression section(QStringLiteral("\\n(private slots|private|public|protected|signals):"));
    QString last;
    for (auto match = section.globalMatch(source.left(declared.capturedStart() + 1)); match.hasNext();) {
        last = match.next().captured(1);
    }
    const bool isDefined =
        declared.captured(1) != QLatin1String(";") || source.contains(QRegularExpression(definition.arg(name)));
    return last == QLatin1String("private slots") && isDefined;
}

QString sourceProblem(const QString& source, const Tree& tree)
{
    const QString file = source.section(QLatin1Char(':'), 0, 0);
    const QString symbol = source.section(QLatin1Char(':'), 1);
    const QString text = tree.read(file);
    if (text.isNull()) {
        return QStringLiteral("there is no file %1").arg(file);
    }
    if (symbol.isEmpty() || !hasWord(text, symbol)) {
        return QStringLiteral("%1 has no symbol “%2”").arg(file, symbol);
    }
    return {};
}

QString testProblem(const QString& test, const Tree& tree)
{
    const QString program = test.section(QStringLiteral("::"), 0, 0);
    const QString function = test.section(QStringLiteral("::"), 1);
    const auto source = tree.programs.constFind(program);
    if (source == tree.programs.constEnd()) {
        return QStringLiteral("CTest runs no %1").arg(program);
    }
    if (!hasTestFunction(tree.read(*source), function)) {
        return QStringLiteral("%1 has no test function “%2”").arg(program, function);
    }
    return {};
}

} // namespace

std::vector<Row> readRows(const QString& markdown, QStringList& problems)
{
    std::vector<Row> rows;
    const QStringList lines = markdown.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString& line = lines[i];
        const bool isHead = i + 1 < lines.size() && lines[i + 1].startsWith(QLatin1String("|---"));
        if (!line.startsWith(QLatin1Char('|')) || line.startsWith(QLatin1String("|---")) || isHead) {
            continue;
        }
        const QStringList cells = line.split(QStringLiteral(" | "));
        if (cells.size() != 3 || !line.endsWith(QLatin1String(" |"))) {
            problems << QStringLiteral("line %1 has not three columns").arg(i + 1);
            continue;
        }
        rows.push_back({i + 1, cells[0].mid(1).trimmed(), quoted(cells[1]), quoted(cells[2])});
    }
    if (rows.empty()) {
        problems << QStringLiteral("there are no rows");
    }
    return rows;
}

QStringList problemsOf(const std::vector<Row>& rows, const Tree& tree)
{
    QStringList problems;
    QSet<QString> known;
    QString allTexts;
    for (const Row& row : rows) {
        const auto tell = [&](const QString& problem) {
            if (!problem.isEmpty()) {
                problems << QStringLiteral("line %1: %2").arg(row.line).arg(problem);
            }
        };
        if (row.text.isEmpty()) {
            tell(QStringLiteral("no behaviour"));
        }
        if (row.sources.isEmpty()) {
            tell(QStringLiteral("no source"));
        }
        if (row.tests.isEmpty()) {
            tell(QStringLiteral("no test"));
        }
        // Dialogs of one kind share some behaviours; the same row would name the same source.
        const QString identity = row.text + row.sources.join(QLatin1Char(' '));
        if (known.contains(identity)) {
            tell(QStringLiteral("twice"));
        }
        known.insert(identity);
        allTexts += row.text + QLatin1Char('\n');
        for (const QString& source : row.sources) {
            tell(sourceProblem(source, tree));
        }
        for (const QString& test : row.tests) {
            tell(testProblem(test, tree));
        }
    }
    for (const QString& text : tree.userTexts) {
        if (!allTexts.contains(QLatin1Char('"') + text + QLatin1Char('"'))) {
            problems << QStringLiteral("no row has the text “%1”").arg(text);
        }
    }
    return problems;
}

QStringList chineseTexts(const QString& source)
{
    static const QRegularExpression literal(QStringLiteral("\"((?:[^\"\\\\\\n]|\\\\.)*)\""));
    static const QRegularExpression chinese(QStringLiteral("\\p{Han}"));
    QStringList texts;
    for (auto match = literal.globalMatch(source); match.hasNext();) {
        const QString text = match.next().captured(1);
        if (text.contains(chinese)) {
            texts << text;
        }
    }
    return texts;
}

} // namespace behaviour
