// SPDX-License-Identifier: Apache-2.0
#include "CPluginDialog.h"

#include "CPluginCatalogue.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QBoxLayout>
#include <QFileInfo>
#include <QHeaderView>
#include <QTreeWidget>

namespace workbench
{

namespace
{

constexpr int LeastRowHeight = 26;
constexpr int TextMargin = 8;

enum EColumn { TitleColumn, StateColumn, ProblemColumn, VersionColumn, ClassColumn, FileColumn };

} // namespace

CPluginDialog::CPluginDialog(const CPluginCatalogue& plugins, QWidget* parent)
    : CClosableDialog(parent), m_list(new QTreeWidget)
{
    setObjectName("plugins");
    setTitle(tr("插件"));
    contents().addWidget(m_list);
    m_list->setObjectName("pluginList");
    m_list->setAccessibleName(tr("插件列表"));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels({tr("名称"), tr("状态"), tr("说明"), tr("SDK 版本"), tr("类"), tr("清单")});
    fill(plugins);
    resize(1100, 460);
}

void CPluginDialog::fill(const CPluginCatalogue& plugins)
{
    const auto* resources = WQ::CUiResourceManager::instance();
    for (const PluginEntry& entry : plugins.entries()) {
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(TitleColumn, entry.displayName());
        item->setText(StateColumn, entry.stateText());
        item->setText(ProblemColumn, entry.problem);
        item->setText(VersionColumn, entry.manifest.sdkVersion);
        item->setText(ClassColumn, entry.manifest.className);
        item->setText(FileColumn, QFileInfo(entry.manifest.file).fileName());
        const QFontMetrics metrics = m_list->fontMetrics();
        item->setSizeHint(TitleColumn, QSize(metrics.horizontalAdvance(entry.displayName()) + TextMargin,
                                             qMax(LeastRowHeight, metrics.height())));
        item->setToolTip(FileColumn, entry.manifest.file);
        item->setToolTip(ProblemColumn, entry.problem);
        if (entry.state == PluginEntry::EState::Broken) {
            item->setForeground(StateColumn, resources->colour(WQ::key::GlobalRise));
        } else if (entry.state == PluginEntry::EState::NotPermitted) {
            item->setForeground(StateColumn, resources->colour(WQ::key::Warning));
        }
    }
    constexpr int LongestColumn = 330;
    for (int column = 0; column < m_list->columnCount(); ++column) {
        m_list->resizeColumnToContents(column);
        m_list->setColumnWidth(column, qMin(m_list->columnWidth(column) + 12, LongestColumn));
    }
}

} // namespace workbench
