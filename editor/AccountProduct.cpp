// SPDX-License-Identifier: Apache-2.0
#include "editor/AccountProduct.h"

#include <WQ/StringConversion.h>
#include <nvservice/CProductInfo.h>

namespace QAV
{

QString productNameOf(const nvservice::CAccountInfo& account, const ProductMap& products)
{
    const auto entry = products.find(account.getKey());
    if (entry != products.end()) {
        if (const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(entry->second)) {
            return WQ::sToQs(product->productName);
        }
    }
    return QStringLiteral("未关联产品");
}

} // namespace QAV
