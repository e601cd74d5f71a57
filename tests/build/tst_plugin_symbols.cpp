// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <QProcess>

/// Reads the dynamic symbol tables of the plug-ins.
class PluginSymbolsTest : public QObject
{
    Q_OBJECT

private slots:
    void theLibraryExportsExactlyOneClass_data() { addPlugins(); }
    void theLibraryExportsExactlyOneClass()
    {
        QFETCH(QString, library);
        QFETCH(QString, className);
        const QStringList symbols = definedSymbols(library, {"--demangle"});
        QVERIFY(!symbols.isEmpty());
        const QRegularExpression ofThePanel(
            QString("^((vtable|typeinfo|typeinfo name) for |non-virtual thunk to )?QAV::%1(::|\\b)").arg(className));
        // Sanitizers add marks of their own to a library.
        const QRegularExpression ofTheInstrumentation("^__(odr_asan|asan|ubsan|tsan|start_asan|stop_asan)");
        QStringList foreign;
        for (const QString& symbol : symbols) {
            if (!ofThePanel.match(symbol).hasMatch() && !ofTheInstrumentation.match(symbol).hasMatch()) {
                foreign << symbol;
            }
        }
        QVERIFY2(foreign.isEmpty(), qPrintable("Exported beside the panel:\n" + foreign.join('\n')));
    }

    void theMetaObjectOfThePanelIsExported_data() { addPlugins(); }
    void theMetaObjectOfThePanelIsExported()
    {
        QFETCH(QString, library);
        QFETCH(QString, className);
        const QStringList symbols = definedSymbols(library, {});
        const QString wanted =
            QString("_ZN3QAV%1%2").arg(QString::number(className.size()), className) + "16staticMetaObjectE";
        QVERIFY(std::any_of(symbols.begin(), symbols.end(),
                            [&](const QString& line) { return line.startsWith(wanted + ' '); }));
    }

private:
    static void addPlugins()
    {
        const support::DataRows<QString, QString> row("library", "className");
        row("account groups", "libQavAccountGroupRisk.so", "CAccountGroupRiskManagePanel");
        row("history", "libQavHistory.so", "CHistoryPanel");
    }

    static QStringList definedSymbols(const QString& library, const QStringList& options)
    {
        QProcess nm;
        nm.start("nm", QStringList{"--dynamic", "--defined-only", "--format=posix"}
                           << options << support::builtFile(QAV_PLUGIN_FOLDER) + '/' + library);
        if (!nm.waitForFinished() || nm.exitCode() != 0) {
            return {};
        }
        return QString::fromUtf8(nm.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    }
};

TEST_WITHOUT_WIDGETS(PluginSymbolsTest)
#include "tst_plugin_symbols.moc"
