// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVector>

namespace samples
{

/// What the comments of a folder of headers say.
class HeaderComments
{
public:
    struct Constant {
        QString name;
        int value = 0;
        QString meaning;
    };

    explicit HeaderComments(const QString& folder);

    /// Of a class, struct or enumeration; without what is said about keys.
    QString ofType(const QString& name) const;
    /// Without what is said about pointers.
    QString ofMember(const QString& type, const QString& member) const;
    QVector<Constant> enumerators(const QString& enumeration) const;
    /// Of a header that is named for them.
    QVector<Constant> constants(const QString& header) const;

private:
    QString read(const QString& header) const;

    QString m_folder;
    QString m_all; ///< every header, one behind the other
};

} // namespace samples
