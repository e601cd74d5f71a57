// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/CommandLine.h"

#include <utils/Translation.h>

#include <QCoreApplication>

namespace service
{

const std::vector<SampleAmount>& sampleAmounts()
{
    static const std::vector<SampleAmount> amounts = {
        {"servers", QT_TRANSLATE_NOOP("service", "分系统的数量"), &SampleOptions::servers},
        {"groups", QT_TRANSLATE_NOOP("service", "账号组的数量，全部分系统合计"), &SampleOptions::groups},
        {"accounts", QT_TRANSLATE_NOOP("service", "账号的数量，全部分系统合计"), &SampleOptions::accounts},
        {"members", QT_TRANSLATE_NOOP("service", "每个账号组平均的账号数量"), &SampleOptions::membersPerGroup},
        {"categories", QT_TRANSLATE_NOOP("service", "每个分系统的证券分类数量"), &SampleOptions::categories},
        {"securities", QT_TRANSLATE_NOOP("service", "每个分系统的证券数量"), &SampleOptions::securities},
        {"seed", QT_TRANSLATE_NOOP("service", "随机种子，相同的种子产生相同的数据"), &SampleOptions::seed}};
    return amounts;
}

QList<QCommandLineOption> sampleDataOptions()
{
    QList<QCommandLineOption> options = {
        utils::languageOption(),
        {"database",
         QCoreApplication::translate("service", "数据库：文件（不存在时创建），或 postgresql://user@host/database"),
         "location"}};
    const SampleOptions defaults;
    for (const SampleAmount& amount : sampleAmounts()) {
        options << QCommandLineOption(amount.option, QCoreApplication::translate("service", amount.description),
                                      "number", QString::number(defaults.*amount.value));
    }
    return options;
}

} // namespace service
