// SPDX-License-Identifier: Apache-2.0
#include "CAboutDialog.h"

#include <QAV/SdkVersion.h>

#include <QBoxLayout>
#include <QCoreApplication>
#include <QLabel>

namespace workbench
{

CAboutDialog::CAboutDialog(QWidget* parent) : CClosableDialog(parent)
{
    setObjectName("about");
    setTitle(tr("关于"));
    const QString text =
        tr("风控管理客户端 %1\n插件 SDK %2\n\n"
           "本程序按 Apache License 2.0 许可：\nhttps://www.apache.org/licenses/LICENSE-2.0\n\n"
           "本程序使用 Qt %3，按 LGPL 第3版许可。\nQt 的版权归 The Qt Company Ltd. 和其他贡献者所有：\n"
           "https://www.qt.io/licensing\n\n"
           "拼音取自 Unicode 字符数据库和 ICU，版权归 Unicode, Inc. 所有，按 Unicode 许可证使用：\n"
           "https://www.unicode.org/license.txt\n\n"
           "本程序还使用 Boost、Lua、libsodium、OpenSSL、SQLite、PostgreSQL 客户端库、\n"
           "Breeze 图标和 Noto 字体，版权归各自的作者所有，按各自的许可使用。");
    // Each address is a line of its own: none is broken.
    auto* const label = new QLabel(text.arg(QCoreApplication::applicationVersion(), QStringLiteral(QAV_SDK_VERSION),
                                            QString::fromLatin1(qVersion())));
    label->setObjectName("aboutText");
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setContentsMargins(12, 12, 12, 12);
    contents().addWidget(label);
}

} // namespace workbench
