// SPDX-License-Identifier: Apache-2.0
#include "RecordTables.h"

#include "HeaderComments.h"
#include "platform/nvservice/RecordFields.h"

#include <nvservice/TypeManager.h>

#include <QStringList>

#include <set>
#include <type_traits>

namespace samples
{

using namespace nvservice;

namespace
{

/// The name of a class without its namespace, taken from what the compiler calls this function.
template <typename Type>
QString nameOf()
{
    const QString function = QString::fromLatin1(__PRETTY_FUNCTION__);
    const int begin = function.lastIndexOf("nvservice::") + int(sizeof "nvservice::" - 1);
    return function.mid(begin, function.indexOf(QRegExp("[];]"), begin) - begin);
}

QString code(const QString& text)
{
    return '`' + text + '`';
}

QString link(const QString& type)
{
    return '[' + code(type) + "](#" + type.toLower() + ')';
}

/// A section that several others may lead to, written once, in the order in which they do.
class Sections
{
public:
    explicit Sections(const HeaderComments& comments) : m_comments(comments) {}

    template <typename Record>
    void addRecord()
    {
        const QString name = nameOf<Record>();
        if (!m_written.insert(name).second) {
            return;
        }
        const Record defaults{};
        QString text = "#### " + name + "\n\n" + sentence(m_comments.ofType(name));
        if constexpr (std::is_base_of_v<IData, Record>) {
            text += " `_type` is " + code(defaults.typeName()) + '.';
        }
        text += "\n\n| field | type | when absent | meaning |\n|---|---|---|---|\n";
        std::apply(
            [&](const auto&... fields) {
                ((text += row(code(fields.name.data()), type(defaults.*(fields.member)),
                              absent(defaults.*(fields.member)), m_comments.ofMember(name, fields.name.data()))),
                 ...);
            },
            Fields<Record>::list);
        m_records += text + '\n';
        std::apply([&](const auto&... fields) { (addNested(defaults.*(fields.member)), ...); }, Fields<Record>::list);
    }

    QString text() const { return "### Records by class\n\n" + m_records + "### Enumerations\n\n" + m_enumerations; }

private:
    static QString sentence(const QString& text) { return text.isEmpty() || text.endsWith('.') ? text : text + '.'; }

    static QString row(const QString& a, const QString& b, const QString& c, const QString& d)
    {
        return "| " + a + " | " + b + " | " + c + " | " + d + (d.isEmpty() ? "|\n" : " |\n");
    }

    static QString type(const std::string&) { return "text"; }
    static QString type(const IDataPtr&) { return "document: any record, with `_type`"; }
    static QString type(const std::set<int>&) { return "array of int32"; }
    template <typename Record>
    static QString type(const boost::shared_ptr<Record>&)
    {
        return link(nameOf<Record>());
    }
    template <typename Value>
    static QString type(const std::vector<Value>&)
    {
        return "array of " + type(Value());
    }
    template <typename Value>
    static QString type(const Value&)
    {
        if constexpr (hasFields<Value>) {
            return link(nameOf<Value>());
        } else if constexpr (std::is_enum_v<Value>) {
            return "int32: " + link(nameOf<Value>());
        } else if constexpr (std::is_same_v<Value, bool>) {
            return "boolean";
        } else if constexpr (std::is_same_v<Value, double>) {
            return "double";
        } else {
            static_assert(std::is_same_v<Value, std::int32_t> || std::is_same_v<Value, std::int64_t>);
            return sizeof(Value) == 4 ? "int32" : "int64";
        }
    }

    static QString absent(const std::string& value)
    {
        return value.empty() ? "empty" : code(QString::fromStdString(value));
    }
    static QString absent(const IDataPtr&) { return "none"; }
    static QString absent(const std::set<int>&) { return "empty"; }
    template <typename Record>
    static QString absent(const boost::shared_ptr<Record>& value)
    {
        return value ? "all fields absent" : "none";
    }
    template <typename Value>
    static QString absent(const std::vector<Value>&)
    {
        return "empty";
    }
    template <typename Value>
    static QString absent(const Value& value)
    {
        if constexpr (hasFields<Value>) {
            return "all fields absent";
        } else if constexpr (std::is_same_v<Value, bool>) {
            return value ? "true" : "false";
        } else if constexpr (std::is_enum_v<Value>) {
            return QString::number(static_cast<int>(value));
        } else {
            return QString::number(value);
        }
    }

    template <typename Record>
    void addNested(const boost::shared_ptr<Record>&)
    {
        if constexpr (hasFields<Record>) {
            addRecord<Record>();
        }
    }
    template <typename Value>
    void addNested(const std::vector<Value>&)
    {
        addNested(Value());
    }
    template <typename Value>
    void addNested(const Value&)
    {
        if constexpr (hasFields<Value>) {
            addRecord<Value>();
        } else if constexpr (std::is_enum_v<Value>) {
            addEnumeration(nameOf<Value>());
        }
    }

    void addEnumeration(const QString& name)
    {
        if (!m_written.insert(name).second) {
            return;
        }
        m_enumerations += "#### " + name + "\n\n" + sentence(m_comments.ofType(name)) + "\n\n";
        m_enumerations += "| value | name | shown as | |\n|---|---|---|---|\n";
        for (const HeaderComments::Constant& each : m_comments.enumerators(name)) {
            const QString number = QString::number(each.value);
            const QString shown =
                QString::fromStdString(TypeManager::getEnumItemName("nvservice::" + name.toStdString(), each.value, 0));
            m_enumerations += row(number, code(each.name), shown == number ? QString() : shown, each.meaning);
        }
        m_enumerations += '\n';
    }

    const HeaderComments& m_comments;
    std::set<QString> m_written;
    QString m_records;
    QString m_enumerations;
};

template <typename... Records>
void addAll(Sections& sections, RecordList<Records...>)
{
    (sections.addRecord<Records>(), ...);
}

QString constants(const HeaderComments& comments, const QString& title, const QString& header)
{
    QString text = "### " + title + "\n\n| code | name | |\n|---|---|---|\n";
    for (const HeaderComments::Constant& each : comments.constants(header)) {
        text += QString("| %1 | `%2` | %3|\n")
                    .arg(QString::number(each.value), each.name, each.meaning.isEmpty() ? "" : each.meaning + ' ');
    }
    return text + '\n';
}

} // namespace

QString recordTables(const QString& headerFolder)
{
    const HeaderComments comments(headerFolder);
    Sections sections(comments);
    addAll(sections, AllRecords());
    return constants(comments, "Data types", "DataType.h") + constants(comments, "Rights", "UserRight.h") +
           sections.text();
}

} // namespace samples
