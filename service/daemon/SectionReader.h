// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Configuration.h"

#include <toml++/toml.h>

#include <QCoreApplication>
#include <QString>

#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace service::daemon
{

/// Reads the keys of one TOML table, which may stand in several files, and collects values and mistakes. Of a key that
/// several files have, the last one holds. A wrong or missing value leaves its target unchanged.
class SectionReader
{
public:
    using Layers = std::vector<const toml::table*>; ///< the table in each file that has it, at least one

    /// @param path  path of the table in the files, for messages; empty for the files themselves
    SectionReader(Layers layers, QString path, ConfigurationResult& result);

    void read(const char* key, int& value, int smallest, int largest);
    void read(const char* key, bool& value);
    void read(const char* key, QString& value);
    void read(const char* key, QHostAddress& value);
    template <typename Enum>
    void read(const char* key, Enum& value, std::initializer_list<std::pair<const char*, Enum>> choices)
    {
        QString text;
        QStringList names;
        read(key, text);
        for (const auto& [name, choice] : choices) {
            if (text == QLatin1String(name)) {
                value = choice;
                return;
            }
            names << QLatin1String(name);
        }
        if (!text.isEmpty()) {
            complain(key, QCoreApplication::translate("service", "只能是 %1")
                              .arg(names.join(QCoreApplication::translate("service", "、"))));
        }
    }

    bool has(const char* key) const { return lastOf(key) != nullptr; }
    /// The table with this key in each file that has it.
    Layers table(const char* key);
    /// The array of tables with this key; null if there is none.
    const toml::array* tables(const char* key);

    /// Adds a mistake about a wrong or missing value.
    void complain(const char* key, const QString& text);
    /// Adds a mistake for every key that was not read.
    void finish();

private:
    const toml::node* lastOf(const char* key) const;
    const toml::node* find(const char* key);
    QString nameOf(std::string_view key) const;
    void complainAt(const toml::source_region& place, const QString& text);

    Layers m_layers;
    QString m_path;
    ConfigurationResult& m_result;
    std::set<std::string, std::less<>> m_asked;
};

} // namespace service::daemon
