// SPDX-License-Identifier: Apache-2.0
#include "PluginManifest.h"

#include <QAV/SdkVersion.h>

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace workbench
{

namespace
{

constexpr qint64 LargestManifest = qint64{64} * 1024;

bool hasForm(const QString& text, const char* pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(pattern))).match(text).hasMatch();
}

bool takeText(const QJsonObject& object, const char* key, bool required, QString& text, QString& problem)
{
    const QJsonValue value = object.value(QLatin1String(key));
    if (value.isUndefined() && !required) {
        return true;
    }
    text = value.toString();
    if (!value.isString() || (required && text.isEmpty())) {
        problem = QCoreApplication::translate("workbench", "清单中缺少“%1”").arg(QLatin1String(key));
        return false;
    }
    return true;
}

bool takeRights(const QJsonObject& object, QVector<int>& rights, QString& problem)
{
    const QJsonValue value = object.value(QLatin1String("rights"));
    if (value.isUndefined()) {
        return true;
    }
    const QJsonArray array = value.toArray();
    bool good = value.isArray();
    for (const QJsonValue& right : array) {
        const int code = right.toInt(0);
        good = good && code > 0;
        rights.append(code);
    }
    if (!good) {
        problem = QCoreApplication::translate("workbench", "清单中的“rights”不是权限编号的列表");
    }
    return good;
}

} // namespace

bool readManifest(const QString& file, PluginManifest& manifest, QString& problem)
{
    manifest = PluginManifest();
    manifest.file = file;
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        problem = QCoreApplication::translate("workbench", "无法读取清单：%1").arg(source.errorString());
        return false;
    }
    const QByteArray bytes = source.read(LargestManifest + 1);
    if (bytes.size() > LargestManifest) {
        problem = QCoreApplication::translate("workbench", "清单过大");
        return false;
    }
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (!document.isObject()) {
        problem = error.error == QJsonParseError::NoError
                      ? QCoreApplication::translate("workbench", "清单不是 JSON 对象")
                      : QCoreApplication::translate("workbench", "清单格式错误：第 %1 字节，%2")
                            .arg(QString::number(error.offset), error.errorString());
        return false;
    }
    const QJsonObject object = document.object();
    // The title first, so that a report of anything else can name the plug-in.
    if (!takeText(object, "title", true, manifest.title, problem) ||
        !takeText(object, "class", true, manifest.className, problem) ||
        !takeText(object, "library", true, manifest.library, problem) ||
        !takeText(object, "sdkVersion", true, manifest.sdkVersion, problem) ||
        !takeText(object, "icon", false, manifest.icon, problem) || !takeRights(object, manifest.rights, problem)) {
        return false;
    }
    if (!hasForm(manifest.className, "[A-Za-z_][A-Za-z0-9_]*(::[A-Za-z_][A-Za-z0-9_]*)*")) {
        problem = QCoreApplication::translate("workbench", "类名“%1”无效").arg(manifest.className);
        return false;
    }
    if (!hasForm(manifest.icon, "[A-Za-z0-9_.+-]*")) {
        problem = QCoreApplication::translate("workbench", "图标“%1”无效").arg(manifest.icon);
        return false;
    }
    if (!hasForm(manifest.library, "[A-Za-z0-9_][A-Za-z0-9_.+-]*")) {
        problem = QCoreApplication::translate("workbench", "库文件名“%1”无效").arg(manifest.library);
        return false;
    }
    if (!hasForm(manifest.sdkVersion, "[0-9]{1,4}\\.[0-9]{1,4}")) {
        problem = QCoreApplication::translate("workbench", "SDK 版本“%1”无效").arg(manifest.sdkVersion);
        return false;
    }
    return true;
}

bool acceptsSdkVersion(const QString& version)
{
    return version.section('.', 0, 0).toInt() == QAV_SDK_VERSION_MAJOR &&
           version.section('.', 1, 1).toInt() <= QAV_SDK_VERSION_MINOR;
}

QByteArray metaObjectSymbol(const QString& className)
{
    QByteArray symbol = "_ZN";
    for (const QString& part : className.split(QStringLiteral("::"))) {
        const QByteArray name = part.toLatin1();
        symbol += QByteArray::number(name.size()) + name;
    }
    return symbol + "16staticMetaObjectE";
}

} // namespace workbench
