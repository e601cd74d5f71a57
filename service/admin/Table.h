// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <vector>

namespace service
{

struct Column {
    const char* key; ///< in JSON
    QString title;   ///< on the screen
};

/// Rows of results, for people or for programs.
class Table
{
public:
    explicit Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}
    /// Adds a row with one value per column. A null or undefined value is shown as an empty text.
    void add(const std::vector<QJsonValue>& row);
    int size() const { return m_rows.size(); }

    QJsonArray toJson() const { return m_rows; }
    /// A line of titles and one line per row, with aligned columns.
    QString toText() const;

private:
    std::vector<Column> m_columns;
    QJsonArray m_rows;
};

/// Writes to standard output.
void printText(const QString& text);
void printJson(const QJsonArray& json);
void printJson(const QJsonObject& json);
void print(const Table& table, bool asJson);

/// A value as readable text, without characters that a terminal would interpret as commands.
QString shown(const QJsonValue& value);

} // namespace service
