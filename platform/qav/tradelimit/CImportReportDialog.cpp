// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CImportReportDialog.h"

#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/CWidgetList.h>
#include <WQ/IBaseHpfTableModel.h>
#include <WQ/ResourceKeys.h>

#include <boost/make_shared.hpp>

namespace QAV
{

namespace
{

enum EReportColumn { LineColumn, CodeColumn, NameColumn, StateColumn, ResultColumn, ColumnCount };
enum EControlId { TakeButtonId = 1, CloseButtonId };

constexpr int ReportTableId = 1280;

class CReportRow : public WQ::IBaseHpfTableData
{
public:
    CReportRow(int index, TradeLimitImportRow row) : m_index(index), m_row(std::move(row)) {}

    QString getDisplayQString(int column) const override
    {
        switch (column) {
        case LineColumn:
            return QString::number(m_row.line);
        case CodeColumn:
            return m_row.code;
        case NameColumn:
            return m_row.name;
        case StateColumn:
            return m_row.accepted ? QStringLiteral("可导入") : QStringLiteral("不导入");
        default:
            return m_row.result;
        }
    }
    QString getQStringValue(int column) const override { return getDisplayQString(column); }
    int getIntValue(int column) const override { return column == LineColumn ? m_row.line : InvalidInt; }
    double getDoubleValue(int) const override { return InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }
    QColor getTextColor(int column) const override
    {
        const bool warns = !m_row.accepted && (column == StateColumn || column == ResultColumn);
        return WQ::CUiResourceManager::instance()->colour(warns ? QString(WQ::key::Warning) : QString(WQ::key::Text));
    }
    QString getKey() const override { return QString::number(m_index); }

private:
    int m_index;
    TradeLimitImportRow m_row;
};

class CReportModel : public WQ::IBaseHpfTableModel
{
public:
    CReportModel() : IBaseHpfTableModel(true) {}

    int getColumnCount() const override { return ColumnCount; }
    QString getHeaderText(int column) const override
    {
        switch (column) {
        case LineColumn:
            return QStringLiteral("行号");
        case CodeColumn:
            return QStringLiteral("证券代码");
        case NameColumn:
            return QStringLiteral("证券名称");
        case StateColumn:
            return QStringLiteral("状态");
        case ResultColumn:
            return QStringLiteral("说明");
        default:
            return {};
        }
    }
    int getValueKind(int column) const override { return column == LineColumn ? WQ::ValueInt : WQ::ValueText; }
};

} // namespace

CImportReportDialog::CImportReportDialog(const QString& source, const TradeLimitImport& import, QWidget* parent)
    : CCommonDialog(parent)
{
    setTitle(QStringLiteral("导入名单"));
    auto* const list = new WQ::CWidgetList(WQ::VerticalList, this);
    list->setMargin(10, 10, 10, 10);
    list->setSpacing(8);
    auto* const summary = new WQ::CSimpleTextWidget(false, 0,
                                                    QStringLiteral("%1：共%2行，可导入%3行，不导入%4行")
                                                        .arg(source, QString::number(import.rows.size()),
                                                             QString::number(import.entries.size()),
                                                             QString::number(import.refusedCount())),
                                                    list);
    summary->setObjectName(QStringLiteral("summary"));
    list->addFixedWidget(summary, WQ::AnchorLeading, true);
    list->addStretchWidget(createTable(import, list), 1, WQ::AnchorLeading, true);
    list->addFixedWidget(createButtons(import.entries.size(), list), WQ::AnchorLeading, true);
    setInnerWidget(list);
    resize(760, 480);
}

CImportReportDialog::~CImportReportDialog() = default;

QWidget* CImportReportDialog::createTable(const TradeLimitImport& import, QWidget* parent)
{
    auto* const table = new WQ::CStandardHpfTable(ReportTableId, parent, WQ::MenuAll);
    table->setObjectName(QStringLiteral("report"));
    table->setAccessibleName(QStringLiteral("导入结果"));
    auto* const model = new CReportModel;
    table->setDataModel(model);
    table->setColumnWidth(LineColumn, 60);
    table->setColumnWidth(CodeColumn, 110);
    table->setColumnWidth(NameColumn, 130);
    table->setColumnWidth(StateColumn, 80);
    table->setColumnWidth(ResultColumn, 340);
    table->setColumnFilterable(StateColumn, true);
    table->setColumnFilterable(ResultColumn, true);
    int index = 0;
    for (const TradeLimitImportRow& row : import.rows) {
        model->addData(boost::make_shared<CReportRow>(index++, row));
    }
    model->announce();
    return table;
}

QWidget* CImportReportDialog::createButtons(std::size_t acceptedCount, QWidget* parent)
{
    auto* const bar = new WQ::CWidgetList(WQ::HorizontalList, parent);
    bar->setSpacing(6);
    bar->addStretchSpace(1);
    if (acceptedCount > 0) {
        auto* const take = new WQ::CSmallNormalButton(TakeButtonId, true, WQ::PrimaryButton, bar);
        take->setObjectName(QStringLiteral("take"));
        take->setText(QStringLiteral("导入%1行").arg(acceptedCount));
        bar->addFixedWidget(take, WQ::AnchorLine, false);
    }
    auto* const close = new WQ::CSmallNormalButton(CloseButtonId, true, WQ::NormalButton, bar);
    close->setObjectName(QStringLiteral("close"));
    close->setText(acceptedCount > 0 ? QStringLiteral("取消") : QStringLiteral("关闭"));
    bar->addFixedWidget(close, WQ::AnchorLine, false);
    return bar;
}

bool CImportReportDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && (id == TakeButtonId || id == CloseButtonId)) {
        done(id == TakeButtonId ? 1 : 0);
        return true;
    }
    return CCommonDialog::handleEvent(type, id, param, text, data);
}

} // namespace QAV
