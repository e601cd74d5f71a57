// SPDX-License-Identifier: Apache-2.0
#include <QAV/CAssetsProportionWidget.h>

#include "assets/CAssetsPane.h"

namespace QAV
{

CAssetsProportionWidget::CAssetsProportionWidget(int tableId, bool readOnly, nvservice::EZVRCScopeType scope,
                                                 int categoryType, QWidget* parent)
    : CBaseWidget(QStringLiteral("assets_proportion"), false, parent),
      m_pane(new CAssetsPane(tableId, readOnly, scope, categoryType, this))
{
    setInnerStretchWidget(m_pane, 0, 0, 0, 0);
}

CAssetsProportionWidget::~CAssetsProportionWidget() = default;

void CAssetsProportionWidget::clearAssetsRCs()
{
    m_pane->setLimits({});
}

void CAssetsProportionWidget::setAssetsRCs(int institutionId, const std::vector<nvservice::CAssetsRC>& assetsRCs,
                                           QString serverName)
{
    CCategoryDirectory& categories = m_pane->categories();
    const bool isOther = categories.setSource(serverName, institutionId);
    m_pane->setLimits(assetsRCs);
    if (isOther) {
        categories.load();
    }
}

void CAssetsProportionWidget::getAssetsRCs(std::vector<nvservice::CAssetsRC>& assetsRCs) const
{
    assetsRCs = m_pane->limits();
}

bool CAssetsProportionWidget::isDataValid(QString& message)
{
    const QString problem = m_pane->showFirstProblem();
    if (problem.isEmpty()) {
        return true;
    }
    message = problem;
    return false;
}

void CAssetsProportionWidget::refresh()
{
    m_pane->categories().load();
}

} // namespace QAV
