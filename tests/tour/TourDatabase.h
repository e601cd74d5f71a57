#pragma once

#include <QString>
#include <QStringList>

namespace tour
{

/// Looks into the database of the embedded service behind the client's back.
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

private:
    QStringList column(const QString& sql, const QStringList& arguments) const;
};

} // namespace tour
