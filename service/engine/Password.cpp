#include "service/engine/Password.h"

#include <sodium.h>

#include <condition_variable>
#include <mutex>

namespace service
{

namespace
{

// The hash of a password that nobody has, so that an unknown user costs what a known one does.
const char* const NobodysHash =
    "$argon2id$v=19$m=65536,t=2,p=1$DUUyUnOp5+dCHRw4FYP4nA$wGhTPhPdZDQlCPQfl1c7D59zyvSm69pXGiJeX5dS+6I";

/// Lets four callers through at a time.
class LogInGate
{
public:
    LogInGate()
    {
        std::unique_lock<std::mutex> lock(mutex());
        changed().wait(lock, [] { return free() > 0; });
        --free();
    }
    ~LogInGate()
    {
        {
            const std::lock_guard<std::mutex> lock(mutex());
            ++free();
        }
        changed().notify_one();
    }
    LogInGate(const LogInGate&) = delete;
    LogInGate& operator=(const LogInGate&) = delete;

private:
    static std::mutex& mutex()
    {
        static std::mutex instance;
        return instance;
    }
    static std::condition_variable& changed()
    {
        static std::condition_variable instance;
        return instance;
    }
    static int& free()
    {
        static int places = 4;
        return places;
    }
};

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
    const LogInGate gate;
    const bool known = !hash.empty() && password.size() <= MaxPasswordBytes;
    const std::string& tried = known ? password : std::string();
    const std::string checked = known ? hash : NobodysHash;
    return ready() && crypto_pwhash_str_verify(checked.c_str(), tried.c_str(), tried.size()) == 0 && known;
}

} // namespace service
