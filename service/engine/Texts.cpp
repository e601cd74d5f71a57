// SPDX-License-Identifier: Apache-2.0
#include "service/engine/Texts.h"

#include <QDir>

// The macro works outside of namespaces only.
static void registerEmbedded()
{
    Q_INIT_RESOURCE(service_texts);
}

void service::registerTexts()
{
    registerEmbedded();
}
