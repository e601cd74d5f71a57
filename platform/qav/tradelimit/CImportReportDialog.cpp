// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CImportReportDialog.h"

#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/CWidgetList.h>
#include <WQ/IBaseHpfTableModel.h>
#include <WQ/ResourceKeys.h>

#include <QCoreApplication>

#include <boost/make_shared.hpp>

namespace QAV
{

namespace
{

enum EReportColumn { LineColumn, CodeColumn, NameColumn, StateColumn, ResultColumn, ColumnCount };

constexpr int ReportTableId = 1280;

class CReportRow : public WQ::IBaseHpfTableData
{
public:
    explicit CReportRow(const TradeLimitImportRow& row)
        : m_line(row.line), m_warns(!row.accepted), m_texts{QString::number(row.line), row.code, row.name,
                                                            row.accepted ? QCoreApplication::translate("QAV", "可导入")
                                                                         : QCoreApplication::translate("QAV", "不导入"),
                                                            row.result}
    {
    }

    QString getDisplayQString(int column) const override { return m_texts.value(column); }
    QString getQStringValue(int column) const override { return getDisplayQString(column); }
    int getIntValue(int column) const override { return column == LineColumn ? m_line : InvalidInt; }
    double getDoubleValue(int) const override { return InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }
    QColor getTextColor(int column) const override
    {
        const bool warns = m_warns && (column == StateColumn || column == ResultColumn);
        return WQ::CUiResourceManager::instance()->colour(warns ? QString(WQ::key::Warning) : QString(WQ::key::Text));
    }
    QString getKey() const override { return m_texts.first(); }

private:
    int m_line;
    bool m_warns;
    QStringList m_texts; ///< by column
};

class CReportModel : public WQ::IBaseHpfTableModel
{
public:
    CReportModel() : IBaseHpfTableModel(true) {}

    int getColumnCount() const override { return ColumnCount; }
    QString getHeaderText(int column) const override
    {
        static const QStringList texts{
            QCoreApplication::translate("QAV", "行号"), QCoreApplication::translate("QAV", "证券代码"),
            QCoreApplication::translate("QAV", "证券名称"), QCoreApplication::translate("QAV", "状态"),
            QCoreApplication::translate("QAV", "说明")};
        return texts.value(column);
    }
    int getValueKind(int column) const override { return column == LineColumn ? WQ::ValueInt : WQ::ValueText; }
};

} // namespace

CImportReportDialog::CImportReportDialog(const QString& source, const TradeLimitImport& import, QWidget* parent)
    : CCommonDialog(parent)
{
    setTitle(QCoreApplication::translate("QAV", "导入名单"));
    auto* const list = new WQ::CWidgetList(WQ::VerticalList, this);
    list->setMargin(10, 10, 10, 10);
    list->setSpacing(8);
    auto* const summary = new WQ::CSimpleTextWidget(
        false, 0,
        QCoreApplication::translate("QAV", "%1：共%2行，可导入%3行，不导入%4行")
            .arg(source, QString::number(import.rows.size()), QString::number(import.entries.size()),
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
    table->setAccessibleName(QCoreApplication::translate("QAV", "导入结果"));
    auto* const model = new CReportModel;
    table->setDataModel(model);
    table->setColumnWidth(LineColumn, 60);
    table->setColumnWidth(CodeColumn, 110);
    table->setColumnWidth(NameColumn, 130);
    table->setColumnWidth(StateColumn, 80);
    table->setColumnWidth(ResultColumn, 340);
    table->setColumnFilterable(StateColumn, true);
    table->setColumnFilterable(ResultColumn, true);
    for (const TradeLimitImportRow& row : import.rows) {
        model->addData(boost::make_shared<CReportRow>(row));
    }
    model->announce();
    return table;
}

QWidget* CImportReportDialog::createButtons(std::size_t acceptedCount, QWidget* parent)
{
    auto* const bar = new WQ::CWidgetList(WQ::HorizontalList, parent);
    bar->setSpacing(6);
    bar->addStretchSpace(1);
    const auto add = [this, bar](const QString& name, const QString& text, int type, int result) {
        auto* const button = new WQ::CSmallNormalButton(0, true, type, bar);
        button->setObjectName(name);
        button->setText(text);
        connect(button, &QPushButton::clicked, this, [this, result] { done(result); });
        bar->addFixedWidget(button, WQ::AnchorLine, false);
    };
    if (acceptedCount > 0) {
        add(QStringLiteral("take"), QCoreApplication::translate("QAV", "导入%n行", nullptr, acceptedCount),
            WQ::PrimaryButton, 1);
    }
    add(QStringLiteral("close"),
        acceptedCount > 0 ? QCoreApplication::translate("QAV", "取消") : QCoreApplication::translate("QAV", "关闭"),
        WQ::NormalButton, 0);
    return bar;
}

} // namespace QAV
