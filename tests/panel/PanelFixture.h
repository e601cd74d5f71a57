// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/qav/CFakeTransport.h"
#include "support/qav/Modules.h"

#include <QAV/CKolmClientCenter.h>
#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/EventType.h>
#include <WQ/IBaseHpfTableModel.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/DataType.h>

#include <QAbstractItemView>
#include <QHeaderView>
#include <QPushButton>

#include <boost/make_shared.hpp>

#include <memory>

#include "panel/CAccountGroupRiskManagePanel.h"
#include "panel/ControlId.h"

namespace panel_test
{

const std::string Shanghai = "上海分系统";
const std::string ShanghaiTag = "SH";
const std::string Shenzhen = "深圳分系统";
const std::string ShenzhenTag = "SZ";

const std::set<int> AllRights{10717, 10719, 10721};
const QString AllModules = "return { mdl_portal = { mdl_portal_pb = true } }";

/// The client around the panel: a user, module switches and servers whose answers the test gives.
class PanelFixture
{
public:
    PanelFixture();
    ~PanelFixture();

    void logIn(const std::set<int>& rights, int institutionId = nvservice::NoInstitutionId);
    void addShanghai();
    void addShenzhen();
    void addBothServers()
    {
        addShanghai();
        addShenzhen();
    }

    /// The panel as the client makes it; one at a time.
    QAV::CAccountGroupRiskManagePanel& createPanel();
    /// The same, on the Shanghai server.
    QAV::CAccountGroupRiskManagePanel& openPanel();
    /// The same, with these groups shown.
    void showGroups(std::vector<nvservice::IDataPtr> groups);
    void destroyPanel() { panel.reset(); }

    WQ::CStandardHpfTable* table() const { return panel->findChild<WQ::CStandardHpfTable*>(); }
    WQ::IBaseHpfTableModel* model() const { return table()->dataModel(); }
    WQ::CLineEdit* searchEdit() const { return panel->findChild<WQ::CLineEdit*>(); }
    WQ::CLoadingMaskWidget* mask() const { return panel->findChild<WQ::CLoadingMaskWidget*>(); }
    WQ::CBaseTableColumnMultiButtonsDelegate* buttons() const;
    QAbstractButton* button(const QString& text) const;
    /// As an input method does it.
    void typeInSearchEdit(const QString& text) const;
    /// What the table shows in a column, from top to bottom.
    QStringList shown(int column) const;

    /// Answers the group query that waits at a server and the product queries that follow, and waits until the mask
    /// has gone.
    void answer(support::CFakeTransport& server, std::vector<nvservice::IDataPtr> groups,
                std::vector<nvservice::IDataPtr> products = {});
    /// Answers the product query at every server.
    void answerProducts(std::vector<nvservice::IDataPtr> products = {});

    boost::shared_ptr<support::CFakeTransport> shanghai;
    boost::shared_ptr<support::CFakeTransport> shenzhen;
    std::unique_ptr<QAV::CAccountGroupRiskManagePanel> panel;
};

boost::shared_ptr<nvservice::CAccountGroup> makeGroup(int id, const std::string& name, const std::string& systemTag,
                                                      int accounts = 1, const std::string& institution = "远山基金");

} // namespace panel_test
