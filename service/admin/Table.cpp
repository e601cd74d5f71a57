// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Table.h"
#include "service/admin/CommandLine.h"
#include "service/engine/TextRules.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <cstdio>

namespace service
{

namespace
{

struct Range {
    uint first;
    uint last;
};

/// Characters that take two places on a terminal.
bool isWide(uint character)
{
    static constexpr Range WideRanges[] = {{0x1100, 0x115f},   {0x2e80, 0x303e},  {0x3041, 0xa4cf}, {0xac00, 0xd7a3},
                                           {0xf900, 0xfaff},   {0xfe30, 0xfe6f},  {0xff00, 0xff60}, {0xffe0, 0xffe6},
                                           {0x1f300, 0x1faff}, {0x20000, 0x3fffd}};
    return std::any_of(std::begin(WideRanges), std::end(WideRanges),
                       [character](const Range& range) { return character >= range.first && character <= range.last; });
}

int widthOf(const QString& text)
{
    const QVector<uint> characters = text.toUcs4();
    return characters.size() + static_cast<int>(std::count_if(characters.begin(), characters.end(), isWide));
}

QString visible(const QString& text)
{
    if (!hasInvisibleCharacters(text)) {
        return text;
    }
    QString clean;
    for (const uint character : text.toUcs4()) {
        const QString one = QString::fromUcs4(&character, 1);
        clean += hasInvisibleCharacters(one) ? QString(QChar::ReplacementCharacter) : one;
    }
    return clean;
}

void appendLine(QString& text, const QStringList& cells, const std::vector<int>& widths)
{
    QString line;
    for (int i = 0; i < cells.size(); ++i) {
        line += cells[i];
        if (i + 1 < cells.size()) {
            line += QString(widths[static_cast<std::size_t>(i)] - widthOf(cells[i]) + 2, QLatin1Char(' '));
        }
    }
    while (line.endsWith(QLatin1Char(' '))) {
        line.chop(1);
    }
    text += line + '\n';
}

} // namespace

QString shown(const Cell& value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool() ? QCoreApplication::translate("service", "是")
                              : QCoreApplication::translate("service", "否");
    case QJsonValue::Double:
        return QString::number(value.toVariant().toLongLong());
    case QJsonValue::String:
        return visible(value.toString());
    case QJsonValue::Array: {
        QStringList items;
        for (const QJsonValue item : value.toArray()) {
            items << shown(item);
        }
        return items.join(QCoreApplication::translate("service", "、"));
    }
    case QJsonValue::Object:
        return visible(QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact)));
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return {};
}

void Table::add(const std::vector<Cell>& row)
{
    QJsonObject object;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        object.insert(QLatin1String(m_columns[i].key), row.at(i));
    }
    m_rows.append(object);
}

QString Table::toText() const
{
    QStringList titles;
    std::vector<int> widths;
    for (const Column& column : m_columns) {
        titles << column.title;
        widths.push_back(widthOf(column.title));
    }
    std::vector<QStringList> lines = {titles};
    for (const QJsonValue& row : m_rows) {
        QStringList cells;
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            cells << shown(row.toObject().value(QLatin1String(m_columns[i].key)));
            widths[i] = std::max(widths[i], widthOf(cells.back()));
        }
        lines.push_back(cells);
    }
    QString text;
    for (const QStringList& line : lines) {
        appendLine(text, line, widths);
    }
    return text;
}

void printText(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
}

void printJson(const QJsonArray& json)
{
    std::fputs(QJsonDocument(json).toJson().constData(), stdout);
}

void printJson(const QJsonObject& json)
{
    std::fputs(QJsonDocument(json).toJson().constData(), stdout);
}

int report(const Invocation& call, const Table& table)
{
    call.wantsJson() ? printJson(table.toJson()) : printText(table.toText());
    return Done;
}

int report(const Invocation& call, const QJsonObject& json, const QString& text)
{
    call.wantsJson() ? printJson(json) : printText(text);
    return Done;
}

int reportSaved(bool isChanged)
{
    printText(isChanged ? QCoreApplication::translate("service", "已保存\n")
                        : QCoreApplication::translate("service", "内容没有变化\n"));
    return Done;
}

} // namespace service
