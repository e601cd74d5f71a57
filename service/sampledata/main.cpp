// SPDX-License-Identifier: Apache-2.0
#include "service/engine/Texts.h"
#include "service/sampledata/CommandLine.h"

#include <utils/Translation.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-sample-data"));

    service::registerTexts();
    QStringList arguments = QCoreApplication::arguments();
    QString problem;
    if (!utils::chooseLanguage(arguments, problem)) {
        std::fprintf(stderr, "%s\n", problem.toUtf8().constData());
        return 2;
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("service", "在新数据库中生成示例数据"));
    parser.addHelpOption();
    parser.addOptions(service::sampleDataOptions());
    parser.process(arguments);

    const auto store = service::StoreOptions::forCreating(parser.value(QStringLiteral("database")));
    if (store.location.isEmpty()) {
        std::fprintf(stderr, "%s\n", utils::filled(utils::text("service", "缺少选项：--%1"), "database").c_str());
        return 2;
    }
    service::SampleOptions options;
    for (const service::SampleAmount& amount : service::sampleAmounts()) {
        bool isNumber = false;
        options.*amount.value = parser.value(QLatin1String(amount.option)).toInt(&isNumber);
        if (!isNumber) {
            const std::string text = utils::filled(utils::text("service", "--%1 应为数字"), amount.option);
            std::fprintf(stderr, "%s\n", text.c_str());
            return 2;
        }
    }

    QElapsedTimer timer;
    timer.start();
    utils::NVError error;
    const service::StorePtr opened = service::Store::open(store, error);
    if (opened) {
        error = service::generateSampleData(*opened, options);
    }
    if (!error.isSuccess()) {
        std::fprintf(stderr, "%s\n", error.errorMsg().c_str());
        return 1;
    }
    const std::string done = utils::filled(utils::text("service", "已生成：分系统 %1，账号 %2，账号组 %3，用时 %4 秒"),
                                           options.servers, options.accounts, options.groups,
                                           QString::number(timer.elapsed() / 1000.0, 'f', 1).toStdString());
    std::printf("%s\n", done.c_str());
    return 0;
}
