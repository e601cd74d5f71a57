// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClientCenter.h>
#include <utils/CSingletonT.h>

namespace workbench
{

inline QAV::CKolmClientCenter& clientCentre()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

} // namespace workbench
