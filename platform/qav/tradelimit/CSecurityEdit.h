// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lookup/CLookUpEdit.h"
#include "lookup/CSecurityDirectory.h"

#include <nvservice/CTradeLimitEntry.h>

namespace QAV
{

/// The edit for a security of one trade type: the user types its code, or looks it up by name or pinyin.
class CSecurityEdit final : public CLookUpEdit
{
    Q_OBJECT

public:
    CSecurityEdit(nvservice::EZvTraderType traderType, QWidget* parent);

    /// Clears the text. Securities are looked up on the server with this tag from now on.
    void reset(const std::string& systemTag);
    CSecurityDirectory& directory() { return m_directory; }
    /// Reads the text into the code and the name of `entry`. Returns the problem; empty if there is none.
    QString read(nvservice::CTradeLimitEntry& entry) const;

private:
    std::vector<int> find(const QString& typed);
    QString offerText(int security) const;
    /// The security that `typed` stands for; -1 if there is none. `problem` is set if the text cannot be a code either.
    int securityOf(const QString& typed, QString& problem) const;
    void onLoaded();

    CSecurityDirectory m_directory;
    int m_chosen = -1; ///< tells apart securities with the same code
};

} // namespace QAV
