// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace service
{

/// Makes the English texts of the service known. Called before utils::setLanguage().
void registerTexts();

} // namespace service
