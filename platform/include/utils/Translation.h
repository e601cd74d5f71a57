// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Export.h>

#include <QCommandLineOption>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace utils
{

/// The languages of the texts of client, platform and service. In the code they are Chinese; the libraries embed the
/// English ones. A plug-in's own texts stay as they are.
///
/// Texts come from `tr()`, `QCoreApplication::translate()` or `text()`. All of them may be called from any thread.
enum class ELanguage { Chinese, English };

/// "zh" or "en": in settings, messages and the option --language.
UTILS_EXPORT std::string nameOf(ELanguage language);
UTILS_EXPORT std::optional<ELanguage> languageNamed(const std::string& name);

/// --language, which every program has.
UTILS_EXPORT QCommandLineOption languageOption();
/// Sets the language of the process: takes `--language` out of the arguments of the program, and goes by LC_ALL,
/// LC_MESSAGES and LANG without one. False, with a text in `problem`, if the option names no language.
UTILS_EXPORT bool chooseLanguage(QStringList& arguments, QString& problem);

/// Sets the language of the process, that of Qt's own texts included. Called on the main thread, before any text is
/// made; needs a QCoreApplication. Chinese before the first call.
UTILS_EXPORT void setLanguage(ELanguage language);
/// The language of the calling thread: that of its innermost CLanguageScope, otherwise that of the process.
UTILS_EXPORT ELanguage language();

/// Gives the calling thread another language while it lives, for the user on whose behalf something is done. Needs an
/// earlier setLanguage().
class UTILS_EXPORT CLanguageScope
{
public:
    explicit CLanguageScope(ELanguage language);
    ~CLanguageScope();
    CLanguageScope(const CLanguageScope&) = delete;
    CLanguageScope& operator=(const CLanguageScope&) = delete;

private:
    std::optional<ELanguage> m_outer;
};

/// QCoreApplication::translate() for UTF-8 texts.
UTILS_EXPORT std::string text(const char* context, const char* source, const char* disambiguation = nullptr,
                              int n = -1);

/// `pattern` with %1 to %9 replaced by the values, all at once: what a value contains is not replaced.
UTILS_EXPORT std::string filledIn(const std::string& pattern, const std::vector<std::string>& values);

/// The same for texts and integers: `filled(text("service", "第%1行：%2"), 7, what)`.
template <typename... Values>
std::string filled(const std::string& pattern, const Values&... values)
{
    const auto asText = [](const auto& value) {
        if constexpr (std::is_integral_v<std::decay_t<decltype(value)>>) {
            return std::to_string(value);
        } else {
            return std::string(value);
        }
    };
    return filledIn(pattern, {asText(values)...});
}

} // namespace utils
