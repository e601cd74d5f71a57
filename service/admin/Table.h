// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace service
{

class Invocation;

/// A value of a result.
class Cell : public QJsonValue
{
public:
    using QJsonValue::QJsonValue;
    Cell() = default; ///< an empty text
    Cell(const QJsonValue& value) : QJsonValue(value) {}
    Cell(const std::string& text) : QJsonValue(QString::fromStdString(text)) {}
    Cell(std::int64_t number) : QJsonValue(static_cast<qint64>(number)) {}
    Cell(std::size_t count) : QJsonValue(static_cast<qint64>(count)) {}
    Cell(const std::optional<std::int64_t>& number) : Cell(number ? Cell(*number) : Cell()) {}
};

struct Column {
    const char* key; ///< in JSON
    QString title;   ///< on the screen
};

/// Rows of results, for people or for programs.
class Table
{
public:
    explicit Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}
    /// Adds a row with one value per column.
    void add(const std::vector<Cell>& row);
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

// These write the result of a command, as JSON if --json asks for it, and return `Done`.
int report(const Invocation& call, const Table& table);
int report(const Invocation& call, const QJsonObject& json, const QString& text);
/// For a change: whether it was stored or there was nothing to change.
int reportSaved(bool isChanged);

/// A value as readable text, without characters that a terminal would interpret as commands.
QString shown(const Cell& value);

} // namespace service
