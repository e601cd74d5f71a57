#pragma once

#include "service/admin/CommandLine.h"

#include <QString>

#include <vector>

namespace packaging
{

struct ManPage {
    QString name; ///< "qav-admin-user"
    QString text; ///< in the language of man(7), UTF-8
};

/// One page of the tool and one for each word that its commands begin with.
std::vector<ManPage> manPages(const std::vector<service::Command>& commands);

} // namespace packaging
