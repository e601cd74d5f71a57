// SPDX-License-Identifier: Apache-2.0
#include "CApplication.h"
#include "Client.h"
#include "Options.h"
#include "Texts.h"

#include <utils/Translation.h>

#include <QIcon>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>

namespace
{

/// Help and version are for terminals as well, where there may be no display.
bool asksForTextOnly(const char* argument)
{
    const auto is = [argument](const char* option) { return std::strcmp(argument, option) == 0; };
    return is("--help") || is("-h") || is("--version") || is("-v");
}

} // namespace

int main(int argc, char* argv[])
{
    Q_INIT_RESOURCE(client);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    std::unique_ptr<QCoreApplication> application;
    if (std::any_of(argv + 1, argv + argc, asksForTextOnly)) {
        application = std::make_unique<QCoreApplication>(argc, argv);
    } else {
        application = std::make_unique<workbench::CApplication>(argc, argv);
        QApplication::setWindowIcon(QIcon(QStringLiteral(":/qav-workbench.svg")));
        QApplication::setDesktopFileName(QStringLiteral("qav-workbench"));
    }
    QCoreApplication::setApplicationName(QStringLiteral("qav-workbench"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QAV_VERSION));

    workbench::registerTexts();
    workbench::Options options;
    QString problem;
    QStringList arguments = QCoreApplication::arguments();
    if (!utils::chooseLanguage(arguments, problem) || !workbench::parseOptions(arguments, options, problem) ||
        !workbench::completeOptions(options, problem)) {
        std::cerr << "qav-workbench: " << qUtf8Printable(problem) << '\n';
        return 2;
    }
    options.isLanguageGiven = arguments.size() < QCoreApplication::arguments().size();
    return workbench::runClient(options);
}
