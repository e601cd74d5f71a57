// SPDX-License-Identifier: Apache-2.0
#include "history/CTextRow.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

namespace QAV
{

CTextRow::CTextRow(const QString& key, const QStringList& texts, nvservice::IDataPtr record, const QString& colourKey)
    : m_key(key), m_texts(texts), m_record(std::move(record)),
      m_colourKey(colourKey.isEmpty() ? QString(WQ::key::Text) : colourKey)
{
}

QColor CTextRow::getTextColor(int) const
{
    return WQ::CUiResourceManager::instance()->colour(m_colourKey);
}

} // namespace QAV
