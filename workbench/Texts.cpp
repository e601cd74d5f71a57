// SPDX-License-Identifier: Apache-2.0
#include "Texts.h"

#include "service/engine/Texts.h"

#include <QDir>

// The macro works outside of namespaces only.
static void registerEmbedded()
{
    Q_INIT_RESOURCE(workbench_texts);
}

void workbench::registerTexts()
{
    registerEmbedded();
    service::registerTexts();
}
