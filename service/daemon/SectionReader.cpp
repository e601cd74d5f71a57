// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/SectionReader.h"

namespace service::daemon
{

SectionReader::SectionReader(const toml::table& table, QString path, std::vector<ConfigurationMistake>& mistakes)
    : m_table(table), m_path(std::move(path)), m_mistakes(mistakes)
{
}

const toml::node* SectionReader::find(const char* key)
{
    m_asked.insert(key);
    return m_table.get(key);
}

QString SectionReader::nameOf(std::string_view key) const
{
    const QString name = QString::fromUtf8(key.data(), static_cast<int>(key.size()));
    return m_path.isEmpty() ? name : m_path + QLatin1Char('.') + name;
}

void SectionReader::complain(const char* key, const QString& text)
{
    const toml::node* node = m_table.get(key);
    const toml::source_region& place = node ? node->source() : m_table.source();
    m_mistakes.push_back({static_cast<int>(place.begin.line), QStringLiteral("配置项 %1 %2").arg(nameOf(key), text)});
}

void SectionReader::read(const char* key, int& value, int smallest, int largest)
{
    const toml::node* node = find(key);
    const auto number = node && node->is_integer() ? node->value<std::int64_t>() : std::nullopt;
    if (number && *number >= smallest && *number <= largest) {
        value = static_cast<int>(*number);
    } else if (node) {
        complain(key,
                 QStringLiteral("必须是 %1 到 %2 的整数").arg(QString::number(smallest), QString::number(largest)));
    }
}

void SectionReader::read(const char* key, bool& value)
{
    const toml::node* node = find(key);
    if (node && node->is_boolean()) {
        value = *node->value<bool>();
    } else if (node) {
        complain(key, QStringLiteral("必须是 true 或 false"));
    }
}

void SectionReader::read(const char* key, QString& value)
{
    const toml::node* node = find(key);
    const auto text = node && node->is_string() ? node->value<std::string>() : std::nullopt;
    if (text && !text->empty()) {
        value = QString::fromStdString(*text);
    } else if (node) {
        complain(key, QStringLiteral("必须是非空文本"));
    }
}

void SectionReader::read(const char* key, QHostAddress& value)
{
    QString text;
    read(key, text);
    if (!text.isEmpty() && !value.setAddress(text)) {
        complain(key, QStringLiteral("不是有效的IP地址"));
    }
}

const toml::table* SectionReader::table(const char* key)
{
    const toml::node* node = find(key);
    if (node && !node->is_table()) {
        complain(key, QStringLiteral("必须是一节，写作 [%1]").arg(nameOf(key)));
    }
    return node ? node->as_table() : nullptr;
}

const toml::array* SectionReader::tables(const char* key)
{
    const toml::node* node = find(key);
    const toml::array* array = node ? node->as_array() : nullptr;
    if (array && array->is_homogeneous<toml::table>()) {
        return array;
    }
    if (node) {
        complain(key, QStringLiteral("的每一项写作 [[%1]]").arg(nameOf(key)));
    }
    return nullptr;
}

void SectionReader::finish()
{
    for (const auto& [key, node] : m_table) {
        if (m_asked.count(key.str()) == 0) {
            m_mistakes.push_back(
                {static_cast<int>(key.source().begin.line), QStringLiteral("未知的配置项 %1").arg(nameOf(key.str()))});
        }
    }
}

} // namespace service::daemon
