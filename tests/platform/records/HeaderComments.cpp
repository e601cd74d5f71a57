// SPDX-License-Identifier: Apache-2.0
#include "HeaderComments.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace samples
{

namespace
{

using Expression = QRegularExpression;

/// The text of comment lines, in one line, ready for Markdown.
QString plain(QString comment)
{
    comment.replace(Expression("\\s*///<?\\s*"), " ");
    comment.replace(Expression("<nvservice/(\\w+)\\.h>"), "`\\1`");
    comment.replace("<", "&lt;").replace("|", "\\|");
    return comment.simplified();
}

QString without(const QString& text, const QString& separator, const Expression& unwanted)
{
    QStringList kept;
    for (const QString& part : text.split(separator)) {
        if (!part.contains(unwanted)) {
            kept << part;
        }
    }
    return kept.join(separator);
}

QVector<HeaderComments::Constant> matches(const QString& text, const QString& declaration, const QString& end)
{
    const Expression pattern("((?:^ *///[^\\n]*\\n)*)^ *" + declaration + "(\\w+) = (-?\\d+)" + end +
                                 "[ ]*(///<[^\\n]*(?:\\n *///<[^\\n]*)*)?",
                             Expression::MultilineOption);
    QVector<HeaderComments::Constant> found;
    for (auto match = pattern.globalMatch(text); match.hasNext();) {
        const auto each = match.next();
        found.append({each.captured(2), each.captured(3).toInt(), plain(each.captured(1) + each.captured(4))});
    }
    return found;
}

} // namespace

HeaderComments::HeaderComments(const QString& folder) : m_folder(folder)
{
    for (const QString& header : QDir(folder).entryList({"*.h"}, QDir::Files, QDir::Name)) {
        m_all += read(header);
    }
}

QString HeaderComments::read(const QString& header) const
{
    QFile file(m_folder + '/' + header);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString HeaderComments::ofType(const QString& name) const
{
    const Expression pattern("((?:^///[^\\n]*\\n)+)^(?:class NVSERVICE_EXPORT|struct|enum class) " + name + "\\b",
                             Expression::MultilineOption);
    const QString text = plain(pattern.match(m_all).captured(1));
    return without(text, ". ", Expression("^Key\\b|no identity of its own"));
}

QString HeaderComments::ofMember(const QString& type, const QString& member) const
{
    const Expression body("^(?:class NVSERVICE_EXPORT|struct) " + type + "\\b[^;]*?\\{(.*?)^\\};",
                          Expression::MultilineOption | Expression::DotMatchesEverythingOption);
    const Expression pattern("((?:^ *///[^\\n]*\\n)*)^[^\\n/(]*\\s" + member +
                                 "(?: = [^;\\n]*)?;[ ]*(///<[^\\n]*(?:\\n *///<[^\\n]*)*)?",
                             Expression::MultilineOption);
    const auto match = pattern.match(body.match(m_all).captured(1));
    QString text = without(plain(match.captured(1) + match.captured(2)), "; ", Expression("\\bnull\\b"));
    return text.endsWith('.') ? text.chopped(1) : text;
}

QVector<HeaderComments::Constant> HeaderComments::enumerators(const QString& enumeration) const
{
    const Expression body("enum class " + enumeration + "\\b[^{]*\\{([^}]*)\\}");
    QString text = body.match(m_all).captured(1);
    text.replace(Expression(", (?=\\w)"), ",\n"); // one a line, also where a line has several
    return matches(text, {}, ",?");
}

QVector<HeaderComments::Constant> HeaderComments::constants(const QString& header) const
{
    return matches(read(header), "constexpr (?:int|std::int32_t) ", ";");
}

} // namespace samples
