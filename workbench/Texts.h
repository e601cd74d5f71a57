// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Translation.h>

namespace workbench
{

/// Makes the English texts of the client and of the service inside it known. Called before utils::setLanguage().
void registerTexts();

} // namespace workbench
