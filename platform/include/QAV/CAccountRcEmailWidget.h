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

/// The editor of the e-mail rules of one account or account group: who is written to when a risk rule fires. One row
/// per rule with recipients, subject and a switch; rules come and go with the risk rules, not here.
///
/// UI thread only. Sends nothing to the data service.
class QAV_EXPORT CAccountRcEmailWidget : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    explicit CAccountRcEmailWidget(QWidget* parent);
    ~CAccountRcEmailWidget() override;

    /// Whose rules these are: an account's key, or the decimal id of an account group. Every rule taken out carries it;
    /// while it is empty, the rules keep their own.
    void setAccountKey(const std::string& accountKey);
    const std::string& accountKey() const;

    /// Shows `rules`, keyed by `CEmailRC::ruleKey`, in the order of their keys, in place of what was shown. The map is
    /// copied and not changed.
    void setInfo(QMap<QString, nvservice::CEmailRC>& rules);

    /// Appends the rules as they are shown now, in the order of their keys. What the user did not touch, and fields
    /// that are not shown, come back as they went in.
    void fillDatas(std::vector<nvservice::CEmailRC>& rules) const;

    /// Ends the events of the controls inside here: they concern nobody above.
    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    struct Private;
    const std::unique_ptr<Private> m_d;
};

} // namespace QAV
