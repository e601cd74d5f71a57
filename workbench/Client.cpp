// SPDX-License-Identifier: Apache-2.0
#include "Client.h"

#include "CInstallation.h"
#include "CLogInDialog.h"
#include "CMainWindow.h"
#include "CMissingFontNotice.h"
#include "COpeningDialog.h"
#include "CSession.h"
#include "CUserSettings.h"
#include "ClientCentre.h"
#include "Options.h"

#include <WQ/CMessageBox.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/StringConversion.h>
#include <luawrapper/LuaModuleCtrl.h>
#include <nvservice/MetaTypes.h>
#include <utils/Translation.h>

#include <QApplication>
#include <QEventLoop>
#include <QFontInfo>
#include <QLoggingCategory>

#include <iostream>
#include <optional>

namespace workbench
{

namespace
{

Q_LOGGING_CATEGORY(lcClient, "qav.workbench")

/// Reports a problem in a message box, or on standard error if nobody watches the screen.
void report(const Options& options, const QString& title, const QString& text)
{
    if (!options.passwordFromStdin) {
        WQ::CMessageBox::warning(nullptr, title, text);
    } else {
        std::cerr << qUtf8Printable(title) << ": " << qUtf8Printable(text) << '\n';
    }
}

/// The themes are made for a desktop font of 9 points at 96 dots per inch.
constexpr qreal NormalFontPixels = 12;

/// What makes the fonts of the themes as large as the desktop wants its fonts.
qreal systemFontScale(const QFont& systemFont)
{
    return QFontInfo(systemFont).pixelSize() / NormalFontPixels;
}

void setUpTheme(const Options& options, const CUserSettings& settings)
{
    auto* resources = WQ::CUiResourceManager::instance();
    resources->setThemeDirectory(options.themeFolder);
    for (const QString& theme : {options.theme, settings.theme(QString()), QStringLiteral("dark")}) {
        if (!theme.isEmpty() && resources->setTheme(theme)) {
            break;
        }
    }
    resources->setFontScale(systemFontScale(QApplication::font()));
    resources->applyTo(*qApp);
}

void checkFonts(const Options& options)
{
    if (!CMissingFontNotice::isNeeded()) {
        return;
    }
    qCWarning(lcClient, "No font has Chinese characters");
    if (!options.passwordFromStdin) {
        CMissingFontNotice().exec();
    }
}

std::string passwordFromStdin()
{
    std::string password;
    std::getline(std::cin, password);
    if (!password.empty() && password.back() == '\r') {
        password.pop_back();
    }
    return password;
}

bool logInWithoutAsking(CSession& session, CUserSettings& settings, const Options& options, const QString& password)
{
    QEventLoop loop;
    CSession::Outcome outcome;
    session.logIn(options.user, password, [&](const CSession::Outcome& reached) {
        outcome = reached;
        loop.quit();
    });
    loop.exec();
    if (!outcome.error.isSuccess()) {
        report(options, QCoreApplication::translate("workbench", "登录"), WQ::sToQs(outcome.error.errorMsg()));
        return false;
    }
    settings.setLastUser(options.user);
    return true;
}

bool logIn(CSession& session, CUserSettings& settings, const Options& options)
{
    CLogInDialog dialog(session, settings, nullptr);
    if (!options.user.isEmpty()) {
        dialog.setCredentials(options.user, QString());
    }
    return dialog.exec() == 1;
}

/// True when another user is to log in.
bool work(CSession& session, CUserSettings& settings, const Options& options)
{
    CPluginCatalogue plugins;
    plugins.scan(options.pluginFolders);
    CMainWindow window(session, settings, plugins);
    window.restoreLayout();
    if (!options.theme.isEmpty()) {
        window.switchTheme(options.theme);
    }
    window.show();
    QEventLoop loop;
    QObject::connect(&window, &CMainWindow::sigClosed, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, &loop, &QEventLoop::quit);
    loop.exec();
    return window.wantsAnotherUser();
}

utils::NVError openDatabase(CInstallation& installation, const Options& options)
{
    if (options.passwordFromStdin) {
        return installation.open(options.database, options.sampleSize);
    }
    return COpeningDialog().run([&](const CInstallation::Progress& progress) {
        return installation.open(options.database, options.sampleSize, progress);
    });
}

int runWithServers(const Options& options)
{
    CUserSettings settings(options.configFile);
    const auto language = settings.language();
    if (language && !options.isLanguageGiven) {
        utils::setLanguage(*language);
    }
    setUpTheme(options, settings);
    checkFonts(options);

    const utils::NVError modules =
        utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->load(WQ::qsToS(options.moduleFile));
    if (!modules.isSuccess()) {
        report(options, QCoreApplication::translate("workbench", "模块开关"), WQ::sToQs(modules.errorMsg()));
    }
    CInstallation installation;
    const bool isEmbedded = options.servers.empty();
    const utils::NVError opened =
        isEmbedded ? openDatabase(installation, options) : installation.connectTo(options.servers);
    if (opened.code() == utils::EErrorCode::Cancelled) {
        return 0;
    }
    if (!opened.isSuccess()) {
        report(options,
               isEmbedded ? QCoreApplication::translate("workbench", "数据库")
                          : QCoreApplication::translate("workbench", "分系统"),
               WQ::sToQs(opened.errorMsg()));
        return 1;
    }
    if (isEmbedded) {
        qCInfo(lcClient, "Database %s", qUtf8Printable(options.database));
    }

    CSession session;
    std::optional<QString> password;
    if (options.passwordFromStdin) {
        password = WQ::sToQs(passwordFromStdin());
    }
    for (bool again = true; again;) {
        if (password) {
            if (!logInWithoutAsking(session, settings, options, *password)) {
                return 1;
            }
            password.reset();
        } else if (!logIn(session, settings, options)) {
            return 0;
        }
        again = work(session, settings, options);
        session.logOut();
    }
    return 0;
}

} // namespace

int runClient(const Options& options)
{
    nvservice::registerMetaTypes();
    // Between log-in and main window there is no window for a moment; the loops end by themselves.
    QApplication::setQuitOnLastWindowClosed(false);
    const int exitCode = runWithServers(options);
    clientCentre().shutDown();
    return exitCode;
}

} // namespace workbench
