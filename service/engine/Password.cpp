// SPDX-License-Identifier: Apache-2.0
#include "service/engine/Password.h"

#include <QSemaphore>

#include <sodium.h>

namespace service
{

namespace
{

// The hash of an unknown password. Checking it for an unknown user takes as long as for a known one.
const char* const NobodysHash =
    "$argon2id$v=19$m=65536,t=2,p=1$DUUyUnOp5+dCHRw4FYP4nA$wGhTPhPdZDQlCPQfl1c7D59zyvSm69pXGiJeX5dS+6I";

/// Limits how many passwords are checked at a time.
QSemaphore& places()
{
    constexpr int MaxChecks = 4;
    static QSemaphore semaphore(MaxChecks);
    return semaphore;
}

bool ready()
{
    static const bool initialised = sodium_init() >= 0;
    return initialised;
}

} // namespace

std::string hashPassword(const std::string& password)
{
    char hash[crypto_pwhash_STRBYTES];
    if (!ready() || crypto_pwhash_str(hash, password.c_str(), password.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                                      crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
        return {};
    }
    return hash;
}

bool verifyPassword(const std::string& hash, const std::string& password)
{
    places().acquire();
    const QSemaphoreReleaser place(places());
    const bool known = !hash.empty() && password.size() <= MaxPasswordBytes;
    const std::string& tried = known ? password : std::string();
    const std::string checked = known ? hash : NobodysHash;
    return ready() && crypto_pwhash_str_verify(checked.c_str(), tried.c_str(), tried.size()) == 0 && known;
}

} // namespace service
