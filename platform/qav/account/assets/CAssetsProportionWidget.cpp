#include <QAV/CAssetsProportionWidget.h>

#include "account/assets/CAssetsPane.h"

namespace QAV
{

struct CAssetsProportionWidget::Private {
    int m_categoryType = AnyCategoryType;
    QString m_serverName;
    CAssetsPane* m_pane = nullptr;
};

CAssetsProportionWidget::CAssetsProportionWidget(int tableId, bool readOnly, nvservice::EZVRCScopeType scope,
                                                 int categoryType, QWidget* parent)
    : CBaseWidget(QStringLiteral("assets_proportion"), false, parent), m_d(std::make_unique<Private>())
{
    m_d->m_categoryType = categoryType;
    m_d->m_pane = new CAssetsPane(tableId, readOnly, scope, this);
    setInnerStretchWidget(m_d->m_pane, 0, 0, 0, 0);
}

CAssetsProportionWidget::~CAssetsProportionWidget() = default;

void CAssetsProportionWidget::clearAssetsRCs()
{
    m_d->m_pane->setLimits({});
}

void CAssetsProportionWidget::setAssetsRCs(int, const std::vector<nvservice::CAssetsRC>& assetsRCs, QString serverName)
{
    m_d->m_pane->setLimits(assetsRCs);
    m_d->m_pane->setServerName(serverName);
    if (serverName == m_d->m_serverName)
        return;
    m_d->m_serverName = serverName;
    refresh();
}

void CAssetsProportionWidget::getAssetsRCs(std::vector<nvservice::CAssetsRC>& assetsRCs) const
{
    assetsRCs = m_d->m_pane->limits();
}

bool CAssetsProportionWidget::isDataValid(QString& message)
{
    const QString problem = m_d->m_pane->showFirstProblem();
    if (problem.isEmpty())
        return true;
    message = problem;
    return false;
}

void CAssetsProportionWidget::refresh() {}

} // namespace QAV
