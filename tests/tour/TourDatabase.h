// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountGroupRCConfig.h>

#include <QString>
#include <QStringList>
#include <QVariantList>

namespace tour
{

/// Looks into the database of the embedded service behind the client's back, and changes it as an administrator of the
/// installation does.
class TourDatabase
{
public:
    explicit TourDatabase(const QString& file);
    ~TourDatabase();
    TourDatabase(const TourDatabase&) = delete;
    TourDatabase& operator=(const TourDatabase&) = delete;

    QStringList servers() const;
    /// The groups of a server, sorted, as the panel shows them: "name|number of accounts|institution|server". Of all
    /// institutions, or of the one with this id on this server.
    QStringList groups(const QString& server, int institution = 0) const;
    /// One group as it is stored: "institution|revision|who changed it last"; empty if there is none.
    QString group(const QString& server, const QString& name) const;
    /// 0 if there is none.
    int groupId(const QString& server, const QString& name) const;
    /// The accounts of a group in its order, as "type:account" or "type:account.unit".
    QStringList members(const QString& server, const QString& name) const;
    /// "id of the account as the user reads it" of accounts that a group of the institution may take in: of one type,
    /// open, not excluded, with or without a unit.
    QStringList usableAccounts(const QString& server, int institution, int type, bool units = false) const;

    /// The risk configuration of a group as it is stored, and "revision|who changed it last" of it.
    nvservice::CAccountGroupRCConfig riskConfig(const QString& server, int groupId) const;
    QString riskConfigState(const QString& server, int groupId) const;

    /// The audit rows since the last call, oldest first: "server tag|login|operation|data type|record|outcome|message".
    QStringList newAudit();
    /// How many they are.
    int newAuditRows() const;

    /// The first value of the first row.
    QVariant value(const QString& sql, const QVariantList& arguments = {}) const;
    QStringList column(const QString& sql, const QVariantList& arguments = {}) const;
    /// Changes rows behind the service's back; at least one.
    void change(const QString& sql, const QVariantList& arguments = {});

    /// Keeps everybody else from writing until `unlock`.
    void lock();
    void unlock();

private:
    qint64 m_lastAudit = 0;
};

} // namespace tour
