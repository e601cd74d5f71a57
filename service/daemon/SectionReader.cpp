// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/SectionReader.h"

#include <QCoreApplication>

#include <algorithm>
#include <sstream>

namespace service::daemon
{

namespace
{

ConfigurationPlace placeOf(const toml::source_region& region)
{
    return {region.path ? QString::fromStdString(*region.path) : QString(), static_cast<int>(region.begin.line)};
}

QString textOf(const toml::node& value)
{
    std::ostringstream text;
    text << toml::toml_formatter(value, toml::format_flags::allow_unicode_strings);
    return QString::fromStdString(text.str());
}

} // namespace

SectionReader::SectionReader(Layers layers, QString path, ConfigurationResult& result)
    : m_layers(std::move(layers)), m_path(std::move(path)), m_result(result)
{
}

const toml::node* SectionReader::lastOf(const char* key) const
{
    const auto found = std::find_if(m_layers.rbegin(), m_layers.rend(),
                                    [key](const toml::table* layer) { return layer->contains(key); });
    return found == m_layers.rend() ? nullptr : (*found)->get(key);
}

const toml::node* SectionReader::find(const char* key)
{
    const toml::node* node = lastOf(key);
    if (m_asked.insert(key).second && node && node->is_value()) {
        m_result.settings.push_back({nameOf(key), textOf(*node), placeOf(node->source())});
    }
    return node;
}

QString SectionReader::nameOf(std::string_view key) const
{
    const QString name = QString::fromUtf8(key.data(), static_cast<int>(key.size()));
    return m_path.isEmpty() ? name : m_path + QLatin1Char('.') + name;
}

void SectionReader::complainAt(const toml::source_region& place, const QString& text)
{
    m_result.mistakes.push_back({text, placeOf(place)});
}

void SectionReader::complain(const char* key, const QString& text)
{
    const toml::node* node = lastOf(key);
    complainAt(node ? node->source() : m_layers.back()->source(),
               QCoreApplication::translate("service", "配置项 %1 %2").arg(nameOf(key), text));
}

void SectionReader::read(const char* key, int& value, int smallest, int largest)
{
    const toml::node* node = find(key);
    const auto number = node && node->is_integer() ? node->value<std::int64_t>() : std::nullopt;
    if (number && *number >= smallest && *number <= largest) {
        value = static_cast<int>(*number);
    } else if (node) {
        complain(key, QCoreApplication::translate("service", "必须是 %1 到 %2 的整数")
                          .arg(QString::number(smallest), QString::number(largest)));
    }
}

void SectionReader::read(const char* key, bool& value)
{
    const toml::node* node = find(key);
    if (node && node->is_boolean()) {
        value = *node->value<bool>();
    } else if (node) {
        complain(key, QCoreApplication::translate("service", "必须是 true 或 false"));
    }
}

void SectionReader::read(const char* key, QString& value)
{
    const toml::node* node = find(key);
    const auto text = node && node->is_string() ? node->value<std::string>() : std::nullopt;
    if (text && !text->empty()) {
        value = QString::fromStdString(*text);
    } else if (node) {
        complain(key, QCoreApplication::translate("service", "必须是非空文本"));
    }
}

void SectionReader::read(const char* key, QHostAddress& value)
{
    QString text;
    read(key, text);
    if (!text.isEmpty() && !value.setAddress(text)) {
        complain(key, QCoreApplication::translate("service", "不是有效的IP地址"));
    }
}

SectionReader::Layers SectionReader::table(const char* key)
{
    m_asked.insert(key);
    Layers layers;
    for (const toml::table* layer : m_layers) {
        const toml::node* node = layer->get(key);
        if (node && node->is_table()) {
            layers.push_back(node->as_table());
        } else if (node) {
            complainAt(node->source(),
                       QCoreApplication::translate("service", "配置项 %1 必须是一节，写作 [%1]").arg(nameOf(key)));
        }
    }
    return layers;
}

const toml::array* SectionReader::tables(const char* key)
{
    const toml::node* node = find(key);
    const toml::array* array = node ? node->as_array() : nullptr;
    if (array && array->is_homogeneous<toml::table>()) {
        return array;
    }
    if (node) {
        complain(key, QCoreApplication::translate("service", "的每一项写作 [[%1]]").arg(nameOf(key)));
    }
    return nullptr;
}

void SectionReader::finish()
{
    for (const toml::table* layer : m_layers) {
        for (const auto& [key, node] : *layer) {
            if (m_asked.count(key.str()) == 0) {
                complainAt(key.source(),
                           QCoreApplication::translate("service", "未知的配置项 %1").arg(nameOf(key.str())));
            }
        }
    }
}

} // namespace service::daemon
