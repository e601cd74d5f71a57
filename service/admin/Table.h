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

/// Rows that are shown to people or to programs.
class Table
{
public:
    explicit Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}
    /// One value for each column. A value that is null or undefined is shown as nothing.
    void add(const std::vector<QJsonValue>& row);
    int size() const { return m_rows.size(); }

    QJsonArray toJson() const { return m_rows; }
    /// A line of titles and one for each row, with columns that stand below each other.
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

/// A value as a person reads it, without characters that a terminal would take for commands.
QString shown(const QJsonValue& value);

} // namespace service
