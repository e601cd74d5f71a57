// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/UnexpectedLog.h"
#include "support/qav/CFakeTransport.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CManagerSearchLineEdit.h>
#include <WQ/CEventDeliverer.h>

#include <QLineEdit>
#include <QWidget>

#include <functional>
#include <memory>

namespace institution_test
{

constexpr int EditId = 4;
constexpr int None = nvservice::NoInstitutionId;

/// What holds the edit and hears of its events.
class Holder : public QWidget, public WQ::CEventDeliverer
{
public:
    bool handleEvent(int type, int id, int, QString, void*) override
    {
        if (id == EditId && type == WQ::ManagerSelectionChanged) {
            ++changes;
        } else if (id == EditId && type == WQ::ManagerDataLoaded) {
            ++loads;
        } else {
            ++others;
        }
        if (onEvent) {
            onEvent(type);
        }
        return true;
    }

    int changes = 0;
    int loads = 0;
    int others = 0;
    std::function<void(int type)> onEvent;
};

nvservice::IDataPtr institution(int id, const std::string& name, const std::string& tag);
/// Through the input method, as Chinese is typed.
void typeChinese(QWidget* edit, const QString& text);

/// An institution edit in its window, and two servers with institutions.
class InstitutionFixture
{
protected:
    void setUp();
    void tearDown();
    /// Sets the tag and waits until the data are reported as loaded.
    void load(const std::string& tag);
    /// What the open list shows.
    QStringList matches() const;
    /// The chosen id; -1 when id and tag don't go together.
    int chosen() const;

    std::unique_ptr<support::UnexpectedLog> m_log;
    boost::shared_ptr<support::CFakeTransport> m_shanghai;
    boost::shared_ptr<support::CFakeTransport> m_shenzhen;
    std::unique_ptr<Holder> m_holder;
    QAV::CManagerSearchLineEdit* m_edit = nullptr;
    QLineEdit* m_other = nullptr;
    QAV::ITransport::Reply m_shanghaiReply;
};

} // namespace institution_test
