// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClient.h>
#include <QAV/IkolmDockableWidget.h>

#include <vector>

namespace WQ
{
class CLineEdit;
class CSimpleTextWidget;
class CStandardHpfTable;
} // namespace WQ

namespace Example
{

class CAccountListModel;

/// Lists the accounts of the selected server, or of all servers, that the user may see.
class Q_DECL_EXPORT CAccountListPanel : public QAV::IkolmDockableWidget
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit CAccountListPanel(QWidget* parent);
    ~CAccountListPanel() override;

    void setParam(const QString& param) override;
    QString param() const override;
    void switchSystem(int index, QString serverName) override;
    void onActive() override;
    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    void refresh();
    void show(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records);

    WQ::CLineEdit* m_search;
    WQ::CSimpleTextWidget* m_state;
    WQ::CStandardHpfTable* m_table;
    CAccountListModel* m_model;
    int m_lastRequest = 0;
};

} // namespace Example
