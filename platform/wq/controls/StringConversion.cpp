// SPDX-License-Identifier: Apache-2.0
#include <WQ/StringConversion.h>

namespace WQ
{

QString sToQs(const std::string& utf8)
{
    return QString::fromUtf8(utf8.data(), int(utf8.size()));
}

std::string qsToS(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    return std::string(utf8.constData(), std::size_t(utf8.size()));
}

} // namespace WQ
