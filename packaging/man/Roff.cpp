// SPDX-License-Identifier: Apache-2.0
#include "packaging/man/Roff.h"

namespace packaging
{

QString escaped(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\e")).replace(QLatin1Char('-'), QLatin1String("\\-"));
    if (text.startsWith(QLatin1Char('.')) || text.startsWith(QLatin1Char('\''))) {
        text.prepend(QLatin1String("\\&"));
    }
    return text;
}

QString quoted(const QString& text)
{
    return '"' + escaped(text).replace(QLatin1Char('"'), QLatin1String("\\(dq")) + '"';
}

QString heading(const QString& page, int section, const QString& summary)
{
    return QStringLiteral(".TH %1 %2 \"\" \"Qav\" \"Qav Administration\"\n.SH NAME\n%3 \\- %4\n")
        .arg(page.toUpper().replace(QLatin1Char('-'), QLatin1String("\\-")), QString::number(section), escaped(page),
             escaped(summary));
}

QString paragraphOf(const QCommandLineOption& option)
{
    QStringList names;
    for (const QString& name : option.names()) {
        names << (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
    }
    QString text = QStringLiteral(".TP\n.BR ") + quoted(names.join(QStringLiteral(", ")));
    if (!option.valueName().isEmpty()) {
        text += QStringLiteral(" \" \" \\fI%1\\fR").arg(escaped(option.valueName()));
    }
    return text + '\n' + escaped(option.description()) + '\n';
}

QString paragraphWithDefault(const QCommandLineOption& option)
{
    const QStringList values = option.defaultValues();
    return paragraphOf(option) +
           (values.isEmpty() ? QString() : QStringLiteral("By default\n.IR %1 .\n").arg(escaped(values.first())));
}

QString seeAlso(const QStringList& pages)
{
    QStringList names;
    for (const QString& page : pages) {
        const int bracket = page.indexOf(QLatin1Char('('));
        names << QStringLiteral(".BR %1 %2").arg(escaped(page.left(bracket)), page.mid(bracket));
    }
    return QStringLiteral(".SH SEE ALSO\n") + names.join(QStringLiteral(" ,\n")) + '\n';
}

} // namespace packaging
