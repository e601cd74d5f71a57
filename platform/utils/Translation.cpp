// SPDX-License-Identifier: Apache-2.0
#include <utils/Translation.h>

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QPointer>
#include <QTranslator>

#include <atomic>
#include <memory>

namespace utils
{

namespace
{

constexpr char OptionName[] = "--language";

std::atomic<ELanguage> languageOfProcess{ELanguage::Chinese};

std::optional<ELanguage>& languageOfThread()
{
    thread_local std::optional<ELanguage> language;
    return language;
}

/// Gives each thread the texts of its language. Once installed it only reads.
class CTexts : public QTranslator
{
public:
    explicit CTexts(QObject* parent) : QTranslator(parent)
    {
        for (const QString& file : QDir(QStringLiteral(":/qav/texts")).entryList()) {
            m_english.push_back(std::make_unique<QTranslator>());
            m_english.back()->load(QStringLiteral(":/qav/texts/") + file);
        }
    }

    void loadQtTexts()
    {
        m_qt.load(QStringLiteral("qtbase_zh_CN"), QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    }

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* source, const char* disambiguation, int n) const override
    {
        if (utils::language() == ELanguage::Chinese) {
            return m_qt.translate(context, source, disambiguation, n);
        }
        for (const auto& texts : m_english) {
            QString found = texts->translate(context, source, disambiguation, n);
            if (!found.isNull()) {
                return found;
            }
        }
        return {};
    }

private:
    std::vector<std::unique_ptr<QTranslator>> m_english;
    QTranslator m_qt; ///< the Chinese texts of Qt itself, which are English in the code
};

ELanguage languageOfEnvironment()
{
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const QByteArray locale = qgetenv(variable);
        if (!locale.isEmpty()) {
            return locale == "en" || locale.startsWith("en_") ? ELanguage::English : ELanguage::Chinese;
        }
    }
    return ELanguage::Chinese;
}

} // namespace

std::string nameOf(ELanguage language)
{
    return language == ELanguage::English ? "en" : "zh";
}

std::optional<ELanguage> languageNamed(const std::string& name)
{
    for (const ELanguage language : {ELanguage::Chinese, ELanguage::English}) {
        if (name == nameOf(language)) {
            return language;
        }
    }
    return std::nullopt;
}

QCommandLineOption languageOption()
{
    return {QString::fromLatin1(OptionName + 2),
            QCoreApplication::translate("utils", "语言：zh 或 en，缺省时由 LC_ALL、LC_MESSAGES 和 LANG 决定"),
            QStringLiteral("name")};
}

bool chooseLanguage(QStringList& arguments, QString& problem)
{
    setLanguage(languageOfEnvironment());
    const QString option = QString::fromLatin1(OptionName);
    for (int i = 1; i < arguments.size(); ++i) {
        const bool isApart = arguments[i] == option;
        if (!isApart && !arguments[i].startsWith(option + '=')) {
            continue;
        }
        const QString name = isApart ? arguments.value(i + 1) : arguments[i].mid(option.size() + 1);
        const auto named = languageNamed(name.toStdString());
        if (!named) {
            problem = QCoreApplication::translate("utils", "--language：只能是 zh 或 en");
            return false;
        }
        setLanguage(*named);
        arguments.erase(arguments.begin() + i, arguments.begin() + i + (isApart ? 2 : 1));
        --i;
    }
    return true;
}

void setLanguage(ELanguage language)
{
    static QPointer<CTexts> installed;
    delete installed;
    languageOfProcess = language;
    installed = new CTexts(QCoreApplication::instance());
    if (language == ELanguage::Chinese) {
        installed->loadQtTexts();
    }
    QCoreApplication::installTranslator(installed);
}

ELanguage language()
{
    return languageOfThread().value_or(languageOfProcess);
}

CLanguageScope::CLanguageScope(ELanguage language) : m_outer(languageOfThread())
{
    languageOfThread() = language;
}

CLanguageScope::~CLanguageScope()
{
    languageOfThread() = m_outer;
}

std::string text(const char* context, const char* source, const char* disambiguation, int n)
{
    return QCoreApplication::translate(context, source, disambiguation, n).toStdString();
}

std::string filledIn(const std::string& pattern, const std::vector<std::string>& values)
{
    std::string filled;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const std::size_t place = pattern[i] == '%' && i + 1 < pattern.size()
                                      ? static_cast<std::size_t>(pattern[i + 1] - '1')
                                      : values.size();
        if (place < values.size()) {
            filled += values[place];
            ++i;
        } else {
            filled += pattern[i];
        }
    }
    return filled;
}

} // namespace utils
