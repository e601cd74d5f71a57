// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QFont>
#include <QHash>
#include <QString>
#include <QStringList>

namespace WQ
{

/// One theme as read from its file and, for missing keys, from its base.
class CTheme
{
public:
    /// Reads `<name>.json` from `directory`, or else from the compiled-in themes. Returns the error; empty on success.
    /// After an error the theme is unchanged.
    QString load(const QString& name, const QString& directory);

    const QString& title() const { return m_title; }
    QFont font() const;
    const QHash<QString, QColor>& colours() const { return m_colours; }
    /// Image key -> file or "breeze:<icon>".
    const QHash<QString, QString>& images() const { return m_images; }
    /// The icon theme for "breeze:".
    QString iconTheme() const { return m_dark ? QStringLiteral("breeze-dark") : QStringLiteral("breeze"); }

    static QStringList names(const QString& directory);

private:
    QString read(const QString& name, const QString& directory, int depth, QHash<QString, QString>& colourTexts);

    QString m_title;
    QStringList m_fontFamilies;
    int m_fontPixelSize = 12;
    bool m_dark = true;
    QHash<QString, QColor> m_colours;
    QHash<QString, QString> m_images;
};

} // namespace WQ
