// SPDX-License-Identifier: Apache-2.0
#include "history/CComparison.h"

#include "history/CTextRow.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <nvservice/Codec.h>

#include <boost/make_shared.hpp>

#include <algorithm>

namespace QAV
{

CComparison::CComparison(std::vector<RecordPair> pairs) : m_pairs(std::move(pairs))
{
    for (std::size_t pair = 0; pair < m_pairs.size(); ++pair) {
        const std::vector<DiffLine> lines = diffOf(m_pairs[pair].before.get(), m_pairs[pair].after.get());
        m_lines.reserve(m_lines.size() + lines.size());
        for (const DiffLine& line : lines) {
            m_lines.push_back({pair, line});
        }
    }
}

int CComparison::changedCount() const
{
    return static_cast<int>(std::count_if(m_lines.begin(), m_lines.end(),
                                          [](const Line& line) { return line.diff.change != EChange::Unchanged; }));
}

QString CComparison::textBefore(int index, const CategoryNames& categories) const
{
    const Line& line = at(index);
    return valueText(line.diff, m_pairs[line.pair].before.get(), line.diff.beforeRow, categories);
}

QString CComparison::textAfter(int index, const CategoryNames& categories) const
{
    const Line& line = at(index);
    return valueText(line.diff, m_pairs[line.pair].after.get(), line.diff.afterRow, categories);
}

CComparisonRow::CComparisonRow(boost::shared_ptr<const CComparison> comparison, int index,
                               const CategoryNames& categories)
    : m_comparison(std::move(comparison)), m_index(index), m_categories(categories)
{
}

QString CComparisonRow::getDisplayQString(int column) const
{
    switch (column) {
    case AreaColumn:
        return areaText(m_comparison->line(m_index));
    case ChangeColumn:
        return changeText(m_comparison->line(m_index).change);
    case BeforeColumn:
        return m_comparison->textBefore(m_index, m_categories);
    case AfterColumn:
        return m_comparison->textAfter(m_index, m_categories);
    default:
        return {};
    }
}

QColor CComparisonRow::getTextColor(int) const
{
    // What is shown of one state is no less important for not being a change.
    return m_comparison->isOneState(m_index) ? WQ::CUiResourceManager::instance()->colour(WQ::key::Text)
                                             : changeColour(m_comparison->line(m_index).change);
}

namespace
{

using RawFields = std::vector<std::pair<QString, QString>>; ///< path and value

QString rawText(const bson::BSONElement& element)
{
    switch (element.type()) {
    case bson::String:
        return WQ::sToQs(std::string(element.str()));
    case bson::Bool:
        return element.boolean() ? QStringLiteral("true") : QStringLiteral("false");
    case bson::NumberDouble:
        return QString::number(element.numberDouble(), 'g', 15);
    case bson::NumberInt:
    case bson::NumberLong:
        return QString::number(element.numberLong());
    case bson::Null:
        return QStringLiteral("null");
    default:
        return QString::fromLatin1(
            QByteArray(element.value().data(), static_cast<int>(element.value().size())).toHex());
    }
}

/// The values of a document in its order. Records are no deeper than the codec allows.
void appendFields(const bson::BSONObj& document, const QString& path, RawFields& fields)
{
    for (bson::BSONObjIterator elements(document); elements.more();) {
        const bson::BSONElement element = elements.next();
        const QString name = path + WQ::sToQs(std::string(element.fieldName()));
        if (element.isABSONObj()) {
            appendFields(element.embeddedObject(), name + QLatin1Char('.'), fields);
        } else {
            fields.emplace_back(name, rawText(element));
        }
    }
}

RawFields fieldsOf(const nvservice::IDataPtr& record)
{
    RawFields fields;
    if (record) {
        appendFields(nvservice::encodeRecord(*record), {}, fields);
    }
    return fields;
}

} // namespace

std::vector<WQ::IBaseHpfTableDataPtr> rawRows(const std::vector<RecordPair>& pairs)
{
    std::vector<WQ::IBaseHpfTableDataPtr> rows;
    const auto append = [&rows](const QString& path, EChange change, const QString& before, const QString& after) {
        const QString colour = change == EChange::Unchanged ? QString(WQ::key::TextWeak) : QString();
        rows.push_back(boost::make_shared<CTextRow>(QString::number(rows.size()),
                                                    QStringList{path, changeText(change), before, after},
                                                    nvservice::IDataPtr(), colour));
    };
    for (const RecordPair& pair : pairs) {
        const RawFields before = fieldsOf(pair.before);
        const RawFields after = fieldsOf(pair.after);
        std::map<QString, QString> values(after.begin(), after.end());
        for (const auto& [path, value] : before) {
            const auto other = values.find(path);
            if (other == values.end()) {
                append(path, EChange::Removed, value, {});
            } else {
                append(path, other->second == value ? EChange::Unchanged : EChange::Changed, value, other->second);
                values.erase(other);
            }
        }
        for (const auto& [path, value] : after) {
            if (values.count(path) != 0) {
                append(path, EChange::Added, {}, value);
            }
        }
    }
    return rows;
}

} // namespace QAV
