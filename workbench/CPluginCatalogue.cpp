// SPDX-License-Identifier: Apache-2.0
#include "CPluginCatalogue.h"

#include <QAV/CUserManager.h>
#include <QAV/IkolmDockableWidget.h>
#include <QAV/SdkVersion.h>
#include <WQ/CUiResourceManager.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QLoggingCategory>
#include <QMetaObject>
#include <QSet>
#include <QWidget>

#include <algorithm>
#include <exception>

namespace workbench
{

namespace
{

Q_LOGGING_CATEGORY(lcPlugins, "qav.plugins")

bool isPermitted(const PluginManifest& manifest)
{
    const auto* users = utils::CSingletonT<QAV::CUserManager>::instance();
    return manifest.rights.isEmpty() || std::any_of(manifest.rights.begin(), manifest.rights.end(),
                                                    [users](int right) { return users->checkUserAuth(right); });
}

void judge(PluginEntry& entry)
{
    const PluginManifest& manifest = entry.manifest;
    if (!acceptsSdkVersion(manifest.sdkVersion)) {
        entry.state = PluginEntry::EState::Broken;
        entry.problem = QCoreApplication::translate("workbench", "SDK 版本不符：插件 %1，客户端 %2")
                            .arg(manifest.sdkVersion, QStringLiteral(QAV_SDK_VERSION));
        return;
    }
    const QFileInfo library(QFileInfo(manifest.file).dir(), manifest.library);
    if (!library.isFile()) {
        entry.state = PluginEntry::EState::Broken;
        entry.problem = QCoreApplication::translate("workbench", "库文件不存在：%1").arg(library.filePath());
        return;
    }
    if (!isPermitted(manifest)) {
        entry.state = PluginEntry::EState::NotPermitted;
        entry.problem = QCoreApplication::translate("workbench", "当前用户没有所需权限");
    }
}

/// An icon that is a file becomes an image with its path as the key.
void addIcon(PluginManifest& manifest)
{
    const QFileInfo file(QFileInfo(manifest.file).dir(), manifest.icon);
    if (file.isFile()) {
        manifest.icon = file.absoluteFilePath();
        WQ::CUiResourceManager::instance()->addImage(manifest.icon, manifest.icon);
    }
}

} // namespace

QString PluginEntry::displayName() const
{
    return manifest.title.isEmpty() ? QFileInfo(manifest.file).fileName() : manifest.title;
}

QString PluginEntry::stateText() const
{
    switch (state) {
    case EState::Available:
        return QCoreApplication::translate("workbench", "可用");
    case EState::Loaded:
        return QCoreApplication::translate("workbench", "已加载");
    case EState::NotPermitted:
        return QCoreApplication::translate("workbench", "无权限");
    case EState::Broken:
        return QCoreApplication::translate("workbench", "无法使用");
    }
    return {};
}

void CPluginCatalogue::scan(const QStringList& folders)
{
    m_folders = folders;
    m_entries.clear();
    QSet<QString> scanned;
    for (const QString& folder : folders) {
        const QString path = QDir(folder).canonicalPath();
        if (scanned.contains(path)) {
            continue;
        }
        scanned.insert(path);
        const QFileInfoList files =
            QDir(folder).entryInfoList({QStringLiteral("*.plugin.json")}, QDir::Files, QDir::Name);
        for (const QFileInfo& file : files) {
            PluginEntry entry;
            if (!readManifest(file.filePath(), entry.manifest, entry.problem)) {
                entry.state = PluginEntry::EState::Broken;
            } else if (find(entry.manifest.className)) {
                continue;
            } else {
                judge(entry);
                addIcon(entry.manifest);
            }
            if (entry.state == PluginEntry::EState::Broken) {
                qCWarning(lcPlugins, "%s: %s", qUtf8Printable(file.filePath()), qUtf8Printable(entry.problem));
            }
            m_entries.push_back(std::move(entry));
        }
    }
}

const PluginEntry* CPluginCatalogue::find(const QString& className) const
{
    const auto it = std::find_if(m_entries.begin(), m_entries.end(), [&](const PluginEntry& entry) {
        return entry.manifest.className == className && !className.isEmpty();
    });
    return it == m_entries.end() ? nullptr : &*it;
}

QAV::IkolmDockableWidget* CPluginCatalogue::create(const QString& className, QWidget* parent)
{
    auto* entry = const_cast<PluginEntry*>(find(className));
    if (!entry || (entry->state != PluginEntry::EState::Available && entry->state != PluginEntry::EState::Loaded)) {
        return nullptr;
    }
    QAV::IkolmDockableWidget* panel = make(*entry, parent);
    if (panel) {
        entry->state = PluginEntry::EState::Loaded;
    } else {
        entry->state = PluginEntry::EState::Broken;
        qCWarning(lcPlugins, "%s: %s", qUtf8Printable(entry->manifest.file), qUtf8Printable(entry->problem));
    }
    return panel;
}

QAV::IkolmDockableWidget* CPluginCatalogue::make(PluginEntry& entry, QWidget* parent)
{
    const PluginManifest& manifest = entry.manifest;
    QLibrary library(QFileInfo(manifest.file).dir().absoluteFilePath(manifest.library));
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    if (!library.load()) {
        entry.problem = QCoreApplication::translate("workbench", "库无法加载：%1").arg(library.errorString());
        return nullptr;
    }
    const auto* meta =
        reinterpret_cast<const QMetaObject*>(library.resolve(metaObjectSymbol(manifest.className).constData()));
    if (!meta) {
        entry.problem = QCoreApplication::translate("workbench", "库中没有类 %1").arg(manifest.className);
        return nullptr;
    }
    if (!meta->inherits(&QAV::IkolmDockableWidget::staticMetaObject)) {
        entry.problem = QCoreApplication::translate("workbench", "类 %1 不是可停靠的面板").arg(manifest.className);
        return nullptr;
    }
    try {
        QObject* object = meta->newInstance(Q_ARG(QWidget*, parent));
        if (!object) {
            entry.problem =
                QCoreApplication::translate("workbench", "类 %1 没有可调用的构造函数").arg(manifest.className);
        }
        return static_cast<QAV::IkolmDockableWidget*>(object);
    } catch (const std::exception& e) {
        entry.problem = QCoreApplication::translate("workbench", "创建面板失败：%1").arg(QString::fromUtf8(e.what()));
    } catch (...) {
        entry.problem = QCoreApplication::translate("workbench", "创建面板失败：未知异常");
    }
    return nullptr;
}

} // namespace workbench
