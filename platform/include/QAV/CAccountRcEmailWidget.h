// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <WQ/CBaseWidget.h>
#include <nvservice/CEmailRC.h>

#include <QMap>
#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace QAV
{

/// Edits the e-mail rules of one account or account group: who gets an e-mail when a risk rule fires. Each rule has one
/// row with recipients, subject and a switch. Rules are added and removed together with the risk rules, not here.
///
/// UI thread only. Sends nothing to the data service.
class QAV_EXPORT CAccountRcEmailWidget : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    explicit CAccountRcEmailWidget(QWidget* parent);
    ~CAccountRcEmailWidget() override;

    /// Sets the owner of the rules: the key of an account, or the decimal id of an account group. fillDatas() writes it
    /// into every rule. While it is empty, the rules keep their own keys.
    void setAccountKey(const std::string& accountKey);
    const std::string& accountKey() const;

    /// Replaces the shown rules by `rules`, whose keys are `CEmailRC::ruleKey`, in the order of the keys. The map is
    /// copied and not changed.
    void setInfo(QMap<QString, nvservice::CEmailRC>& rules);

    /// Appends the rules as shown, in the order of their keys. Rules that the user did not edit, and fields that are
    /// not shown, are unchanged.
    void fillDatas(std::vector<nvservice::CEmailRC>& rules) const;

    /// Consumes the events of the controls inside.
    bool handleEvent(int, int, int, QString, void*) override { return true; }

private:
    struct Private;
    const std::unique_ptr<Private> m_d;
};

} // namespace QAV
