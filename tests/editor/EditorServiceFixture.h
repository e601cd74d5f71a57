// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "editor/AccountList.h"
#include "editor/EditorFixture.h"

#include "workbench/CInstallation.h"
#include "workbench/CSession.h"

#include <QTemporaryDir>

namespace editor_test
{

/// The dialogs on the real service: sample data in a database of its own, reached through the client centre.
class EditorServiceFixture : public EditorFixture
{
public:
    EditorServiceFixture();
    ~EditorServiceFixture();

    void logInAs(const QString& user, const QString& password);
    /// Sends what the panel sends when the user has saved; returns the service's refusal, empty for success.
    QString send(nvservice::EZvDataOperation operation, const boost::shared_ptr<nvservice::CAccountGroup>& group,
                 const QString& server);
    /// The group as the service has it.
    boost::shared_ptr<nvservice::CAccountGroup> storedGroup(const QString& server, const QString& name);
    /// The products by account key, as the panel has them.
    QAV::ProductMap products();

    /// Rows of the database, read behind the service's back: the columns joined with '|'.
    QStringList rows(const QString& sql, const QStringList& arguments) const;
    /// The newest audit row of an operation on account groups: "login|operation|outcome|had a state before|has one
    /// after". `outcome` is 0 for success.
    QString lastAudit() const;
    /// The members of a stored group in order, as they are displayed.
    QStringList members(const QString& server, const QString& group) const;

private:
    QString file() const { return m_folder.filePath("editor.db"); }
    std::vector<nvservice::IDataPtr> ask(int dataType);

    QTemporaryDir m_folder;
    std::unique_ptr<workbench::CInstallation> m_installation;
    std::unique_ptr<workbench::CSession> m_session;
};

} // namespace editor_test
