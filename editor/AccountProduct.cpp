// SPDX-License-Identifier: Apache-2.0
#include "editor/AccountProduct.h"

#include <WQ/StringConversion.h>
#include <nvservice/CProductInfo.h>

namespace QAV
{

QString productNameOf(const nvservice::CAccountInfo& account, const ProductMap& products)
{
    const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(products.value(account.getKey()));
    return product ? WQ::sToQs(product->productName) : QStringLiteral("未关联产品");
}

} // namespace QAV
