// SPDX-License-Identifier: Apache-2.0
#include "CTheme.h"

#include <WQ/ResourceKeys.h>
#include <utils/Translation.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace WQ
{

namespace
{

const QString BuiltIn = QStringLiteral(":/wq/themes");
constexpr int MaximumBases = 8;
constexpr qint64 MaximumFileSize = 1 << 20;

QString themeFile(const QString& name, const QString& directory)
{
    // A name is a file's base name, never a path.
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\'))) {
        return QString();
    }
    for (const QString& place : {directory, BuiltIn}) {
        const QString file = place + QLatin1Char('/') + name + QStringLiteral(".json");
        if (!place.isEmpty() && QFile::exists(file)) {
            return file;
        }
    }
    return QString();
}

/// Follows references from key to key. Invalid if they end nowhere or form a circle.
QColor resolve(const QHash<QString, QString>& texts, QString value)
{
    for (int step = 0; step <= texts.size(); ++step) {
        if (value.startsWith(QLatin1Char('#'))) {
            return QColor(value);
        }
        value = texts.value(value);
    }
    return QColor();
}

} // namespace

QString CTheme::load(const QString& name, const QString& directory)
{
    CTheme fresh;
    QHash<QString, QString> texts;
    const QString problem = fresh.read(name, directory, 0, texts);
    if (!problem.isEmpty()) {
        return problem;
    }
    for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
        const QColor colour = resolve(texts, it.value());
        if (!colour.isValid()) {
            return QStringLiteral("theme %1: \"%2\" is no colour (%3)").arg(name, it.value(), it.key());
        }
        fresh.m_colours.insert(it.key(), colour);
    }
    const QColor window = fresh.m_colours.value(key::Window);
    fresh.m_dark = !window.isValid() || window.lightness() < 128;
    *this = fresh;
    return QString();
}

QString CTheme::read(const QString& name, const QString& directory, int depth, QHash<QString, QString>& colourTexts)
{
    const QString path = themeFile(name, directory);
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return QStringLiteral("theme %1: no such theme").arg(name);
    }
    if (file.size() > MaximumFileSize) {
        return QStringLiteral("theme %1: %2 is too large").arg(name, path);
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error == QJsonParseError::NoError && !document.isObject()) {
        return QStringLiteral("theme %1: %2 holds no JSON object").arg(name, path);
    }
    if (!document.isObject()) {
        return QStringLiteral("theme %1: %2: %3 at byte %4")
            .arg(name, path, error.errorString(), QString::number(error.offset));
    }
    const QJsonObject root = document.object();

    const QString base = root.value(QStringLiteral("base")).toString();
    if (!base.isEmpty()) {
        if (depth == MaximumBases) {
            return QStringLiteral("theme %1: too many bases").arg(name);
        }
        // A file may extend the compiled-in theme of the same name.
        const QString problem = read(base, base == name ? QString() : directory, depth + 1, colourTexts);
        if (!problem.isEmpty()) {
            return QStringLiteral("theme %1: %2").arg(name, problem);
        }
    }
    const QString ownTitle = root.value(QStringLiteral("title")).toString(name);
    const QString language = QString::fromStdString(utils::nameOf(utils::language()));
    m_title = root.value(QStringLiteral("title.") + language).toString(ownTitle);
    const QJsonObject colours = root.value(QStringLiteral("colours")).toObject();
    for (auto it = colours.begin(); it != colours.end(); ++it) {
        colourTexts.insert(it.key(), it.value().toString());
    }
    const QJsonObject images = root.value(QStringLiteral("images")).toObject();
    const QString folder = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    for (auto it = images.begin(); it != images.end(); ++it) {
        const QString value = it.value().toString();
        m_images.insert(it.key(), value.startsWith(QLatin1String("breeze:")) ? value : folder + value);
    }
    const QJsonObject font = root.value(QStringLiteral("font")).toObject();
    if (font.contains(QStringLiteral("families"))) {
        m_fontFamilies.clear();
        for (const QJsonValue family : font.value(QStringLiteral("families")).toArray()) {
            m_fontFamilies << family.toString();
        }
    }
    m_fontPixelSize = qBound(8, font.value(QStringLiteral("pixelSize")).toInt(m_fontPixelSize), 40);
    return QString();
}

QFont CTheme::font() const
{
    QFont font;
    if (!m_fontFamilies.isEmpty()) {
        font.setFamilies(m_fontFamilies);
    }
    font.setPixelSize(m_fontPixelSize);
    return font;
}

QStringList CTheme::names(const QString& directory)
{
    QStringList names;
    for (const QString& place : {directory, BuiltIn}) {
        if (place.isEmpty()) {
            continue;
        }
        for (const QString& file : QDir(place).entryList({QStringLiteral("*.json")}, QDir::Files)) {
            names << file.chopped(5);
        }
    }
    names.removeDuplicates();
    names.sort();
    return names;
}

} // namespace WQ
